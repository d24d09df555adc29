// The run that both threads share: what it is made of, and what its end does to steps and calls.
#include "OBCore/transforms/TransformRun.h"

#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"

namespace {

using obcore::PathList;
using obcore::TransformRun;

class TransformRunState : public obtest::RunFixture {
protected:
    PathList files_{L"C:\\t\\a.doc", L"C:\\t\\b.doc"};
    std::shared_ptr<TransformRun> run_ = std::make_shared<TransformRun>(job_, files_, L"C:\\t\\");

    bool Calls() {
        bool called = false;
        const bool open = run_->WhileOpen([&called] { called = true; });
        EXPECT_EQ(open, called);
        return called;
    }
};

TEST_F(TransformRunState, TakesItsFieldsFromTheJob) {
    EXPECT_EQ(run_->Manager, job_.OwnedProviderManager);
    EXPECT_EQ(run_->Files(), files_);
    EXPECT_EQ(run_->Folder, L"C:\\t\\");
    EXPECT_EQ(run_->Dialog, owner_.Get());
    EXPECT_EQ(run_->Result, 1);
}

TEST_F(TransformRunState, HasMode1BeforeAZipAnd3Otherwise) {
    EXPECT_FALSE(run_->BeforeArchive);
    EXPECT_EQ(run_->Mode(), 3u);
    job_.TransformsBeforeArchive = true;
    EXPECT_EQ(TransformRun(job_, {}, {}).Mode(), 1u);
}

TEST_F(TransformRunState, ReplacesTheListStepByStep) {
    EXPECT_TRUE(run_->FinishStep({L"x"}));
    EXPECT_EQ(run_->Files(), PathList{L"x"});
    EXPECT_TRUE(run_->FinishStep({}));
    EXPECT_TRUE(run_->Files().empty());
}

TEST_F(TransformRunState, ReplacesOrDropsOneFile) {
    EXPECT_TRUE(run_->FinishFile(1, L"b.pdf"));
    EXPECT_EQ(run_->Files(), (PathList{L"C:\\t\\a.doc", L"b.pdf"}));
    EXPECT_TRUE(run_->FinishFile(0, L""));
    EXPECT_EQ(run_->Files(), PathList{L"b.pdf"});
    EXPECT_FALSE(run_->FinishFile(1, L"c"));
    EXPECT_EQ(run_->Files(), PathList{L"b.pdf"});
}

TEST_F(TransformRunState, MakesNoCallAndFinishesNoStepAfterTheEnd) {
    EXPECT_TRUE(Calls());
    EXPECT_FALSE(run_->MarkEnd());
    EXPECT_FALSE(Calls());
    EXPECT_FALSE(run_->FinishStep({}));
    EXPECT_FALSE(run_->FinishFile(0, L"x"));
    EXPECT_EQ(run_->Files(), files_);
}

TEST_F(TransformRunState, MakesNoCallAndFinishesNoStepAfterACancel) {
    run_->Cancel();
    EXPECT_FALSE(Calls());
    EXPECT_FALSE(run_->FinishStep({}));
    EXPECT_TRUE(run_->MarkEnd());
}

TEST_F(TransformRunState, ReportsTheEndThatComesDuringACall) {
    EXPECT_FALSE(run_->WhileOpen([this] { run_->MarkEnd(); })); // the lock is free inside
}

} // namespace
