#include "tests/unit/ObLib/CountedMemory.h"

#include <atomic>
#include <cstdlib>
#include <string_view>

#include <malloc.h>
#if !defined(_WIN32)
#define _msize malloc_usable_size
#endif

namespace {

constinit std::atomic<std::size_t> g_count = 0;
constinit std::atomic<std::size_t> g_live = 0;
constinit std::atomic<std::size_t> g_failAt = SIZE_MAX;
constinit std::atomic<void (*)()> g_atNext = nullptr;

bool g_watches = false;
wchar_t g_watched[4] = {};
std::size_t g_released = 0;
std::size_t g_holding = 0;

void* Allocate(std::size_t bytes) {
    if (auto* const call = g_atNext.exchange(nullptr)) call();
    void* const memory = g_count++ == g_failAt ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) throw std::bad_alloc();
    ++g_live;
    return memory;
}

void Look(const void* memory) {
    const std::wstring_view units(static_cast<const wchar_t*>(memory),
                                  _msize(const_cast<void*>(memory)) / sizeof(wchar_t));
    ++g_released;
    if (units.find(std::wstring_view(g_watched, 4)) != std::wstring_view::npos) ++g_holding;
}

void Release(void* memory) {
    if (memory == nullptr) return;
    if (g_watches) Look(memory);
    --g_live;
    std::free(memory);
}

} // namespace

std::size_t AllocationCount() { return g_count; }
std::size_t LiveBlocks() { return g_live; }

void AtNextAllocation(void (*call)()) { g_atNext = call; }

WatchReleased::WatchReleased(wchar_t unit) {
    for (wchar_t& watched : g_watched) watched = unit;
    g_released = g_holding = 0;
    g_watches = true;
}
WatchReleased::~WatchReleased() { g_watches = false; }
std::size_t WatchReleased::Released() const { return g_released; }
std::size_t WatchReleased::Holding() const { return g_holding; }

FailAllocation::FailAllocation(std::size_t which) { g_failAt = g_count + which; }
FailAllocation::~FailAllocation() { g_failAt = SIZE_MAX; }

void* operator new(std::size_t bytes) { return Allocate(bytes); }
void* operator new[](std::size_t bytes) { return Allocate(bytes); }
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Release(memory); }
