// A work process that misbehaves while it converts a photo: one sentence, and the copy stays.
#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

class PhotoRefusals : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo, kTransform));
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, 50, kTransform));
    }
};

// "good" writes what is neither a JPEG nor a PNG.
TEST_F(PhotoRefusals, StopTheRunAndLeaveTheCopy) {
    for (const char* word : {"good", "crash", "exit", "garbage", "half", "wrong-size", "no-output",
                             "crash-after-writing", "full", "too-large"}) {
        ExpectRefused(word);
        SetUp();
    }
}

TEST_F(PhotoRefusals, StopTheRunWithoutAWorkProcess) {
    const std::wstring program = obtest::BesideProgram(kTransformWorkFileName);
    const std::wstring away = obtest::BesideProgram(L"away.exe");
    ASSERT_TRUE(MoveFileW(program.c_str(), away.c_str()));
    ExpectRefused("good");
    ASSERT_TRUE(MoveFileW(away.c_str(), program.c_str()));
}

// A cancel while the work process writes.
TEST_F(PhotoRefusals, EndWithTheSessionAndLeaveOnlyTheCopy) {
    const std::wstring path = folder_.File(L"photo.heic", "photo");
    Script("hang-after-writing");
    const obtest::MessageBoxWatcher boxes;
    std::thread worker([&] { EXPECT_FALSE(Execute(path)); });
    EXPECT_TRUE(AwaitUnfinished());
    Entries().Deinit(manager_);
    worker.join();
    EXPECT_EQ(Files(), (Names{L"photo.heic"}));
    EXPECT_EQ(obtest::ReadFileContent(path), "photo");
    EXPECT_TRUE(boxes.Seen().empty());
}

} // namespace
