#include "tests/unit/services/archive/zip/EngineSeams.h"

#include <libdeflate.h>
#include <malloc.h>
#include <tlhelp32.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Written while no run goes on, read by its threads.
std::function<void()> beforeCompress;
DWORD compressorOwner = 0;
std::atomic<std::size_t> compressorCalls = 0;

obtest::AllocationPlan plan;
DWORD planOwner = 0;
std::atomic<bool> planned = false;
std::atomic<std::size_t> planCalls = 0;
std::atomic<bool> planFailed = false;

std::atomic<std::size_t> liveBytes = 0;
std::atomic<std::size_t> peakBytes = 0;

bool IsToFail(std::size_t size) {
    if (!planned || size < plan.smallest) return false;
    if (plan.othersOnly && GetCurrentThreadId() == planOwner) return false;
    const std::size_t call = planCalls++;
    const bool fails = plan.once ? call == plan.succeeding : call >= plan.succeeding;
    if (fails) planFailed = true;
    return fails;
}

void Count(std::size_t size) {
    const std::size_t live = liveBytes += size;
    std::size_t peak = peakBytes;
    while (live > peak && !peakBytes.compare_exchange_weak(peak, live)) {
    }
}

} // namespace

void* operator new(std::size_t size) {
    void* const block = IsToFail(size) ? nullptr : std::malloc(size ? size : 1);
    if (!block) throw std::bad_alloc();
    Count(_msize(block));
    return block;
}

void operator delete(void* block) noexcept {
    if (block) liveBytes -= _msize(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

// The linker leads each call of the compressor here.
extern "C" {
std::size_t __real_libdeflate_deflate_compress(libdeflate_compressor* compressor, const void* in,
                                               std::size_t inSize, void* out, std::size_t outSize);

std::size_t __wrap_libdeflate_deflate_compress(libdeflate_compressor* compressor, const void* in,
                                               std::size_t inSize, void* out, std::size_t outSize) {
    if (beforeCompress && GetCurrentThreadId() != compressorOwner) {
        ++compressorCalls;
        beforeCompress();
    }
    return __real_libdeflate_deflate_compress(compressor, in, inSize, out, outSize);
}
}

namespace obtest {

CompressorSeam::CompressorSeam(std::function<void()> before) {
    compressorOwner = GetCurrentThreadId();
    compressorCalls = 0;
    beforeCompress = std::move(before);
}

CompressorSeam::~CompressorSeam() { beforeCompress = nullptr; }

std::size_t CompressorSeam::Calls() const { return compressorCalls; }

FailingAllocations::FailingAllocations(const AllocationPlan& wanted) {
    plan = wanted;
    planOwner = GetCurrentThreadId();
    planCalls = 0;
    planFailed = false;
    planned = true;
}

void FailingAllocations::End() { planned = false; }

bool FailingAllocations::Failed() const { return planFailed; }

HeapPeak::HeapPeak() : before_(liveBytes) { peakBytes = before_; }

std::size_t HeapPeak::Bytes() const { return peakBytes - before_; }

std::size_t ThreadCount() {
    const ObLib::UniqueKernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    std::size_t count = 0;
    for (BOOL more = Thread32First(snapshot.Get(), &thread); more;
         more = Thread32Next(snapshot.Get(), &thread)) {
        count += thread.th32OwnerProcessID == GetCurrentProcessId();
    }
    return count;
}

bool AwaitThreads(std::size_t count) {
    const ULONGLONG limit = GetTickCount64() + 10'000;
    while (ThreadCount() > count) {
        if (GetTickCount64() > limit) return false;
        Sleep(1);
    }
    return true;
}

} // namespace obtest
