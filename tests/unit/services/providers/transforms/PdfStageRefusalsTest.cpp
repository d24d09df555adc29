// A work process that misbehaves while it makes a PDF: one sentence, and the copy stays.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

class PdfStageRefusals : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(3);
    }
};

// "good" writes what is no PDF.
TEST_F(PdfStageRefusals, StopTheRunAndLeaveTheCopy) {
    for (const char* word : {"good", "crash", "exit", "garbage", "half", "wrong-size", "no-output",
                             "crash-after-writing", "full", "too-large"}) {
        ExpectRefused(word);
        SetUp();
    }
}

TEST_F(PdfStageRefusals, StopTheRunWithoutAWorkProcess) { ExpectRefusedWithoutAWorkProcess(); }

TEST_F(PdfStageRefusals, EndWithTheSessionAndLeaveOnlyTheCopy) {
    ExpectEndedBySession(L"photo.jpg");
}

} // namespace
