#include "tests/support/Allocations.h"

#include <atomic>
#include <cstdlib>
#include <string_view>
#include <thread>

#include <malloc.h>
#if !defined(_WIN32)
#define _msize malloc_usable_size
#endif

namespace {

constinit std::atomic<std::size_t> g_count = 0;
constinit std::atomic<std::size_t> g_live = 0;
constinit std::atomic<void (*)()> g_atNext = nullptr;
constinit std::atomic<void*> g_lastReleased = nullptr;

// Written while no planned allocation can happen on another thread, read by all threads.
obtest::AllocationPlan g_plan;
std::thread::id g_planner;
constinit std::atomic<bool> g_planned = false;
constinit std::atomic<std::size_t> g_planCalls = 0;
constinit std::atomic<bool> g_planFailed = false;

// Relative to the beginning of the measurement: what was allocated before and is released makes it
// negative.
constinit std::atomic<bool> g_measured = false;
constinit std::atomic<std::ptrdiff_t> g_bytes = 0;
constinit std::atomic<std::ptrdiff_t> g_peak = 0;

bool g_watched = false;
wchar_t g_units[4] = {};
std::size_t g_released = 0;
std::size_t g_holding = 0;

bool IsToFail(std::size_t size) {
    if (!g_planned || size < g_plan.smallest) return false;
    if (g_plan.othersOnly && std::this_thread::get_id() == g_planner) return false;
    const std::size_t call = g_planCalls++;
    const bool fails = g_plan.once ? call == g_plan.succeeding : call >= g_plan.succeeding;
    if (fails) g_planFailed = true;
    return fails;
}

void Measure(std::size_t size) {
    const std::ptrdiff_t bytes = g_bytes += static_cast<std::ptrdiff_t>(size);
    std::ptrdiff_t peak = g_peak;
    while (bytes > peak && !g_peak.compare_exchange_weak(peak, bytes)) {
    }
}

void* Allocate(std::size_t size) {
    if (g_atNext) {
        if (auto* const call = g_atNext.exchange(nullptr)) call();
    }
    ++g_count;
    void* const block = IsToFail(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    ++g_live;
    if (g_measured) Measure(_msize(block));
    return block;
}

void Look(void* block) {
    const std::wstring_view units(static_cast<const wchar_t*>(block),
                                  _msize(block) / sizeof(wchar_t));
    ++g_released;
    if (units.find(std::wstring_view(g_units, 4)) != std::wstring_view::npos) ++g_holding;
}

void Release(void* block) {
    if (block == nullptr) return;
    if (g_watched) Look(block);
    if (g_measured) g_bytes -= static_cast<std::ptrdiff_t>(_msize(block));
    --g_live;
    g_lastReleased = block;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) { return Allocate(size); }
// A sanitizer's own forms for arrays don't come by the one above.
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }

namespace obtest {

std::size_t AllocationCount() { return g_count; }
std::size_t LiveBlocks() { return g_live; }

void AtNextAllocation(void (*call)()) { g_atNext = call; }

void* LastReleased() { return g_lastReleased; }
void ForgetReleased() { g_lastReleased = nullptr; }

FailingAllocations::FailingAllocations(const AllocationPlan& plan) {
    g_plan = plan;
    g_planner = std::this_thread::get_id();
    g_planCalls = 0;
    g_planFailed = false;
    g_planned = true;
}

void FailingAllocations::End() { g_planned = false; }

bool FailingAllocations::Failed() const { return g_planFailed; }

HeapPeak::HeapPeak() {
    g_bytes = g_peak = 0;
    g_measured = true;
}

HeapPeak::~HeapPeak() { g_measured = false; }

std::size_t HeapPeak::Bytes() const { return static_cast<std::size_t>(g_peak.load()); }

WatchReleased::WatchReleased(wchar_t unit) {
    for (wchar_t& watched : g_units) watched = unit;
    g_released = g_holding = 0;
    g_watched = true;
}

WatchReleased::~WatchReleased() { g_watched = false; }

std::size_t WatchReleased::Released() const { return g_released; }
std::size_t WatchReleased::Holding() const { return g_holding; }

} // namespace obtest
