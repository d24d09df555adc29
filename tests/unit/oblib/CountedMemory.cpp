#include "tests/unit/oblib/CountedMemory.h"

#include <atomic>
#include <cstdlib>

namespace {

constinit std::atomic<std::size_t> g_count = 0;
constinit std::atomic<std::size_t> g_live = 0;
constinit std::atomic<std::size_t> g_failAt = SIZE_MAX;

void* Allocate(std::size_t bytes) {
    void* const memory = g_count++ == g_failAt ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) throw std::bad_alloc();
    ++g_live;
    return memory;
}

void Release(void* memory) {
    if (memory == nullptr) return;
    --g_live;
    std::free(memory);
}

} // namespace

std::size_t AllocationCount() { return g_count; }
std::size_t LiveBlocks() { return g_live; }

FailAllocation::FailAllocation(std::size_t which) { g_failAt = g_count + which; }
FailAllocation::~FailAllocation() { g_failAt = SIZE_MAX; }

void* operator new(std::size_t bytes) { return Allocate(bytes); }
void* operator new[](std::size_t bytes) { return Allocate(bytes); }
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Release(memory); }
