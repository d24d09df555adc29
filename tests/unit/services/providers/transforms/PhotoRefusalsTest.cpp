// A work process that misbehaves while it converts a photo: one sentence, and the copy stays.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

class PhotoRefusals : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(50);
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

TEST_F(PhotoRefusals, StopTheRunWithoutAWorkProcess) { ExpectRefusedWithoutAWorkProcess(); }

TEST_F(PhotoRefusals, EndWithTheSessionAndLeaveOnlyTheCopy) { ExpectEndedBySession(L"photo.heic"); }

} // namespace
