// Counts what both libraries allocate: ours by operator new, theirs by functions handed to it.
#pragma once

#include <cstddef>

namespace bench {

struct Counted {
    std::size_t calls = 0;
    std::size_t bytes = 0;
};

extern Counted ours; // every operator new of the program
extern Counted theirs;

void* AllocateTheirs(std::size_t bytes);
void FreeTheirs(void* memory);

} // namespace bench
