// Blocked file calls and a cancel.
#include "services/providers/folder/BreakableCalls.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/support/WindowKit.h"

using providers::BreakableCalls;

namespace {

class BreakableCallsTest : public testing::Test {
protected:
    BreakableCallsTest() { CreatePipe(read_.Put(), write_.Put(), nullptr, 0); }

    // Blocks until a byte comes. 0 when it came, else the error.
    DWORD Read() {
        char byte = 0;
        DWORD size = 0;
        return ReadFile(read_.Get(), &byte, 1, &size, nullptr) ? 0 : GetLastError();
    }
    void Write() {
        DWORD written = 0;
        WriteFile(write_.Get(), "", 1, &written, nullptr);
    }

    ObLib::UniqueKernelHandle read_;
    ObLib::UniqueKernelHandle write_;
    ObLib::UniqueKernelHandle cancelled_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

TEST_F(BreakableCallsTest, ReturnsWhatTheCallReturnsAndKeepsItsError) {
    BreakableCalls calls(cancelled_.Get());
    EXPECT_EQ(calls.Run([] { return SetLastError(42), 7; }), 7);
    EXPECT_EQ(GetLastError(), 42U);
    Write();
    EXPECT_EQ(calls.Run([&] { return Read(); }), 0U);
}

TEST_F(BreakableCallsTest, ACancelEndsACallThatBlocks) {
    BreakableCalls calls(cancelled_.Get());
    std::thread user([&] { SetEvent(cancelled_.Get()); });
    EXPECT_EQ(calls.Run([&] { return Read(); }), static_cast<DWORD>(ERROR_OPERATION_ABORTED));
    EXPECT_EQ(calls.Run([&] { return Read(); }), static_cast<DWORD>(ERROR_OPERATION_ABORTED));
    user.join();
}

std::atomic<bool> isInside;
std::atomic<int> breaks;

BOOL WINAPI NoteBreak(HANDLE) {
    EXPECT_TRUE(isInside);
    return ++breaks != 0;
}

// The clean-up after a cancel has to get through.
TEST_F(BreakableCallsTest, ACancelEndsNoOtherCall) {
    obtest::ImportPatch patch("kernel32.dll", "CancelSynchronousIo", &NoteBreak);
    ASSERT_TRUE(patch.Ok());
    const obtest::TestFolder folder;
    SetEvent(cancelled_.Get());
    BreakableCalls calls(cancelled_.Get());
    for (int round = 1; round <= 3; ++round) {
        isInside = true;
        EXPECT_TRUE(calls.Run([&] { return obtest::WaitUntil([&] { return breaks >= round; }); }));
        isInside = false;
        for (int file = 0; file < 200; ++file) {
            EXPECT_TRUE(DeleteFileW(folder.File(L"x.part").c_str()));
        }
    }
}

} // namespace
