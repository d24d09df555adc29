#include "benchmarks/xml/CountedMemory.h"

#include <cstdlib>
#include <new>

namespace bench {
namespace {

void* Allocate(Counted& counted, std::size_t bytes) {
    ++counted.calls;
    counted.bytes += bytes;
    return std::malloc(bytes);
}

} // namespace

Counted ours;
Counted theirs;

void* AllocateTheirs(std::size_t bytes) { return Allocate(theirs, bytes); }

void FreeTheirs(void* memory) { std::free(memory); }

} // namespace bench

void* operator new(std::size_t bytes) {
    void* memory = bench::Allocate(bench::ours, bytes);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
