// What a run does while its workers are busy, and when one of them fails.
#include <libdeflate.h>

#include <array>
#include <atomic>
#include <new>
#include <stdexcept>

#include "tests/support/ImportPatch.h"
#include "tests/unit/services/archive/zip/EngineFixture.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace obtest {
namespace {

using obarchive::ProgressCallback;
using obarchive::ZipProgress;
using obarchive::ZipResult;

constexpr std::size_t kFiles = 100;
constexpr ULONGLONG kPrompt = 5'000; // milliseconds: a busy machine, and no hang

class EngineWorkersTest : public EngineFixture {
protected:
    // Everything is read, and what still goes on is the workers'.
    static bool OnlyWorkersWork(const ZipProgress& now) { return now.bytesRead == now.totalBytes; }
};

TEST_F(EngineWorkersTest, TheCallbackKeepsComingWhileOnlyWorkersWork) {
    constexpr int kCalls = 10;
    AddSmallFiles(kFiles);
    const Gate gate;
    const CompressorSeam seam([&gate] { EXPECT_TRUE(gate.Wait()); });
    int calls = 0;
    ULONGLONG last = 0;
    ULONGLONG longest = 0;
    const auto progress = [&](const ZipProgress& now) {
        if (!OnlyWorkersWork(now)) return true;
        const ULONGLONG time = GetTickCount64();
        if (++calls > 1 && calls <= kCalls) longest = std::max(longest, time - last);
        last = time;
        if (calls == kCalls) gate.Open();
        return true;
    };
    EXPECT_EQ(Run(progress), ZipResult::Ok);
    EXPECT_GE(calls, kCalls);
    EXPECT_LT(longest, 1'000U);
    EXPECT_TRUE(AwaitThreads(threads_));
}

TEST_F(EngineWorkersTest, ACancelEndsTheRunWhileOnlyWorkersWork) {
    AddSmallFiles(kFiles);
    for (const bool encrypted : {false, true}) {
        if (encrypted) Encrypt();
        const Gate gate;
        const CompressorSeam seam([&gate] { EXPECT_TRUE(gate.Wait()); });
        int calls = 0;
        ULONGLONG cancelled = 0;
        const auto progress = [&](const ZipProgress& now) {
            if (!OnlyWorkersWork(now) || ++calls < 3) return true;
            cancelled = GetTickCount64();
            gate.Open();
            return false;
        };
        EXPECT_EQ(Run(progress), ZipResult::Cancelled);
        EXPECT_EQ(calls, 3) << "no call comes after a cancel";
        EXPECT_LT(GetTickCount64() - cancelled, kPrompt);
        EXPECT_LT(seam.Calls(), kFiles / 2) << "what no worker had begun is dropped";
        ExpectNothingLeft();
    }
}

TEST_F(EngineWorkersTest, ACancelEndsTheRunWhileALargeFileIsPacked) {
    Add(L"large.txt", EngineProse(8'000'000));
    for (const std::uint32_t method : {8U, 0xFFFFFFFFU}) {
        job_.compressionMethod = method;
        ULONGLONG cancelled = 0;
        const auto progress = [&](const ZipProgress& now) {
            if (!OnlyWorkersWork(now)) return true;
            cancelled = GetTickCount64();
            return false;
        };
        EXPECT_EQ(Run(progress), ZipResult::Cancelled);
        EXPECT_LT(GetTickCount64() - cancelled, kPrompt);
        ExpectNothingLeft();
    }
}

TEST_F(EngineWorkersTest, AnExceptionInATaskFailsTheRunAndStopsTheOthers) {
    struct Row {
        void (*raise)();
        ZipResult expected;
    };
    constexpr Row kRows[] = {
        {[] { throw std::runtime_error("x"); }, ZipResult::EngineFailed},
        {[] { throw std::bad_alloc(); }, ZipResult::OutOfMemory},
        {[] { throw 7; }, ZipResult::EngineFailed},
    };
    AddSmallFiles(kFiles);
    for (const Row& row : kRows) {
        const Gate never;
        std::atomic<bool> raised = false;
        const CompressorSeam seam([&] {
            if (!raised.exchange(true)) row.raise();
            never.Wait(100); // a slow worker, which the run waits for
        });
        EXPECT_EQ(Run(), row.expected);
        EXPECT_LT(seam.Calls(), kFiles / 2);
        EXPECT_EQ(failedFile_, L"");
        ExpectNothingLeft();
    }
}

TEST_F(EngineWorkersTest, AnExceptionInAnyTaskFailsTheRun) {
    AddSmallFiles(20);
    Add(L"large.txt", EngineProse(5'000'000));
    Encrypt();
    std::size_t all = 0;
    {
        const CompressorSeam seam([] {});
        ASSERT_EQ(Run(), ZipResult::Ok);
        all = seam.Calls();
        DeleteFileW(job_.target.c_str());
    }
    ASSERT_GE(all, 20U);
    for (const std::size_t place : {std::size_t{1}, all / 2, all}) {
        std::atomic<std::size_t> call = 0;
        const CompressorSeam seam([&] {
            if (++call == place) throw std::runtime_error("x");
        });
        EXPECT_EQ(Run(), ZipResult::EngineFailed) << place << " of " << all;
        ExpectNothingLeft();
    }
}

TEST_F(EngineWorkersTest, AWorkerWithoutMemoryFailsTheRun) {
    AddSmallFiles(kFiles);
    Add(L"large.txt", EngineProse(5'000'000));
    for (const std::size_t succeeding : {0U, 1U, 20U}) {
        FailingAllocations failing({succeeding, 32 * 1024, true, false});
        const ZipResult result = Run();
        failing.End();
        EXPECT_TRUE(failing.Failed());
        EXPECT_EQ(result, ZipResult::OutOfMemory) << succeeding;
        ExpectNothingLeft();
    }
}

// Reading breaks off at one piece while every worker waits; the workers go on only then.
struct BrokenDisk {
    int piecesThatRead = 0;
    const Gate* gate = nullptr;
    decltype(&ReadFile) real = nullptr;
};
BrokenDisk brokenDisk;

BOOL WINAPI ReadUntilBroken(HANDLE file, void* data, DWORD size, DWORD* read, OVERLAPPED* how) {
    if (brokenDisk.piecesThatRead-- > 0) return brokenDisk.real(file, data, size, read, how);
    brokenDisk.gate->Open();
    SetLastError(ERROR_CRC);
    return FALSE;
}

TEST_F(EngineWorkersTest, ASourceThatCannotBeReadStopsTheWorkers) {
    AddSmallFiles(kFiles);
    for (const int place : {0, 30, 80}) {
        const Gate gate;
        const CompressorSeam seam([&gate] { EXPECT_TRUE(gate.Wait()); });
        const ImportPatch<decltype(&ReadFile)> patch("kernel32.dll", "ReadFile", &ReadUntilBroken);
        ASSERT_TRUE(patch.Ok());
        brokenDisk = {place, &gate, patch.Real()};
        EXPECT_EQ(Run(), ZipResult::SourceUnreadable);
        EXPECT_LT(seam.Calls(), kFiles / 2);
        EXPECT_EQ(failedFile_, job_.files[static_cast<std::size_t>(place)]);
        ExpectNothingLeft();
    }
}

BOOL WINAPI WriteToFullDisk(HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST_F(EngineWorkersTest, AFullDiskStopsTheWorkers) {
    constexpr std::size_t kNoises = 60;
    const std::string noise = EngineNoise(60'000);
    for (std::size_t index = 0; index < kNoises; ++index) {
        Add(L"noise" + std::to_wstring(index), noise);
    }
    const Gate never;
    const CompressorSeam seam([&never] { never.Wait(20); });
    const ImportPatch<decltype(&WriteFile)> patch("kernel32.dll", "WriteFile", &WriteToFullDisk);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(Run(), ZipResult::DiskFull);
    EXPECT_LT(seam.Calls(), kNoises / 2);
    ExpectNothingLeft();
}

// Whatever can't be allocated: the run answers so or throws it, ends, and leaves nothing.
class EngineMemoryShortageTest : public EngineFixture {
protected:
    // True when the run came through without missing anything.
    bool RunShortOf(const AllocationPlan& plan) {
        FailingAllocations failing(plan);
        ZipResult result = ZipResult::OutOfMemory;
        try {
            result = Run();
        } catch (const std::bad_alloc&) {
        }
        failing.End();
        if (result == ZipResult::Ok) {
            EXPECT_TRUE(ReadZip(job_.target, job_.password.Text())) << plan.succeeding;
            DeleteFileW(job_.target.c_str());
        } else {
            EXPECT_EQ(result, ZipResult::OutOfMemory) << plan.succeeding;
        }
        ExpectNothingLeft();
        return !failing.Failed();
    }

    // A shortage at every place up to the first run that doesn't come to it.
    void Sweep(bool once) {
        constexpr std::size_t kMost = 3000;
        std::size_t place = 0;
        while (place < kMost && !HasFailure() && !RunShortOf({place, 0, false, once})) ++place;
        EXPECT_LT(place, kMost);
        EXPECT_GT(place, 50U);
    }
};

TEST_F(EngineMemoryShortageTest, OneFailedAllocationAnywhereLeavesNothing) {
    for (int index = 0; index < 4; ++index) {
        Add(std::to_wstring(index) + L".txt", EngineProse(3000));
    }
    Encrypt();
    Sweep(true);
}

TEST_F(EngineMemoryShortageTest, AllocationsThatFailFromAnyPlaceOnLeaveNothing) {
    for (int index = 0; index < 4; ++index) {
        Add(std::to_wstring(index) + L".txt", EngineProse(3000));
    }
    job_.duplicateReferences = true;
    Sweep(false);
}

} // namespace
} // namespace obtest
