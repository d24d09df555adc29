#include "tests/faults/toolkit/SpoiledMemory.h"

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace obtest {
namespace {

constexpr int kPattern = 0xDD;
constexpr std::size_t kMostKept = 100'000; // more than one opening of a dialog gives back

bool isSpoiling = false;
void* kept[kMostKept];
std::size_t keptCount = 0;

} // namespace

SpoiledMemory::SpoiledMemory() { isSpoiling = true; }

SpoiledMemory::~SpoiledMemory() {
    isSpoiling = false;
    for (; keptCount > 0; --keptCount) std::free(kept[keptCount - 1]);
}

} // namespace obtest

// Of the whole test program, in place of the library's, which frees what malloc has given.
void operator delete(void* memory) noexcept {
    using namespace obtest;
    if (!isSpoiling || memory == nullptr || keptCount == kMostKept) {
        std::free(memory);
        return;
    }
    std::memset(memory, kPattern, _msize(memory));
    kept[keptCount++] = memory;
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
