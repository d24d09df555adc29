#include "tests/unit/WebVellant/OBCore/cloud/HeapWatch.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

void* lastFreed = nullptr;

} // namespace

namespace obtest {

void* LastFreed() { return lastFreed; }
void ForgetFreed() { lastFreed = nullptr; }

} // namespace obtest

void* operator new(std::size_t size) {
    if (void* block = std::malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    if (block) lastFreed = block;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
