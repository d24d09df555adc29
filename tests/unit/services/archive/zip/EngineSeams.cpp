#include "tests/unit/services/archive/zip/EngineSeams.h"

#include <libdeflate.h>
#include <tlhelp32.h>

#include <atomic>

namespace {

// Written while no run goes on, read by its threads.
std::function<void()> beforeCompress;
DWORD compressorOwner = 0;
std::atomic<std::size_t> compressorCalls = 0;

} // namespace

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
