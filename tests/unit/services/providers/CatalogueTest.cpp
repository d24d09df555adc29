#include <gtest/gtest.h>

#include "services/providers/Catalogue.h"
#include "services/providers/Selection.h"
#include "services/providers/transforms/Stages.h"
#include "tests/support/Allocations.h"

using obcontract::CloudProvider;
using obcontract::kSelectLeaveOut;
using obcontract::kSelectUse;
using obcontract::ProviderKind;
using obcontract::TransformId;

namespace {

using providers::Catalogue;
using providers::CountStages;
using providers::ResizeAim;
using providers::RunPlan;
using providers::Selection;
using providers::StageCounts;

class CatalogueTest : public testing::Test {
protected:
    void SetUp() override {
        catalogue_.Add({7, ProviderKind::Storage, &seven_});
        catalogue_.Add({3, ProviderKind::Transform, nullptr});
        catalogue_.Add({21, ProviderKind::Storage, &twentyOne_});
        catalogue_.Add({70, ProviderKind::Transform, nullptr});
    }

    CloudProvider seven_{};
    CloudProvider twentyOne_{};
    Catalogue catalogue_;
};

TEST_F(CatalogueTest, KnowsAProviderByIdAndKind) {
    EXPECT_TRUE(catalogue_.Contains(7, ProviderKind::Storage));
    EXPECT_FALSE(catalogue_.Contains(7, ProviderKind::Transform));
    EXPECT_TRUE(catalogue_.Contains(3, ProviderKind::Transform));
    EXPECT_FALSE(catalogue_.Contains(0, ProviderKind::Storage));
}

TEST_F(CatalogueTest, GivesTheInstanceOfAProvider) {
    EXPECT_EQ(catalogue_.Instance(21, ProviderKind::Storage), &twentyOne_);
    EXPECT_EQ(catalogue_.Instance(3, ProviderKind::Transform), nullptr);
    EXPECT_EQ(catalogue_.Instance(99, ProviderKind::Storage), nullptr);
}

TEST_F(CatalogueTest, WalksTheStorageProvidersWithOneCursor) {
    EXPECT_EQ(catalogue_.Next(), &seven_);
    EXPECT_EQ(catalogue_.Next(), &twentyOne_);
    EXPECT_EQ(catalogue_.Next(), nullptr);
    EXPECT_EQ(catalogue_.Next(), nullptr);
    catalogue_.StartOver();
    EXPECT_EQ(catalogue_.Next(), &seven_);
    catalogue_.StartOver();
    EXPECT_EQ(catalogue_.Next(), &seven_);
}

TEST_F(CatalogueTest, ContainsAProviderOnce) {
    catalogue_.Add({7, ProviderKind::Storage, &twentyOne_});
    EXPECT_EQ(catalogue_.Instance(7, ProviderKind::Storage), &seven_);
    catalogue_.Next();
    catalogue_.Next();
    EXPECT_EQ(catalogue_.Next(), nullptr);
}

class SelectionTest : public CatalogueTest {
protected:
    bool Select(std::uint32_t mode, std::uint32_t id, ProviderKind kind = ProviderKind::Transform) {
        return selection_.Select(catalogue_, mode, id, kind);
    }

    Selection selection_;
};

TEST_F(SelectionTest, IsEmptyAtFirst) { EXPECT_FALSE(selection_.HasAny(ProviderKind::Transform)); }

TEST_F(SelectionTest, HasWhatIsUsedUntilItIsLeftOut) {
    EXPECT_TRUE(Select(kSelectUse, 3));
    EXPECT_TRUE(Select(kSelectUse, 70));
    EXPECT_TRUE(Select(kSelectUse, 3));
    EXPECT_TRUE(selection_.HasAny(ProviderKind::Transform));
    EXPECT_TRUE(Select(kSelectLeaveOut, 3));
    EXPECT_TRUE(selection_.HasAny(ProviderKind::Transform));
    EXPECT_TRUE(Select(kSelectLeaveOut, 70));
    EXPECT_FALSE(selection_.HasAny(ProviderKind::Transform));
}

TEST_F(SelectionTest, KeepsTheKindsApart) {
    EXPECT_TRUE(Select(kSelectUse, 7, ProviderKind::Storage));
    EXPECT_TRUE(selection_.HasAny(ProviderKind::Storage));
    EXPECT_FALSE(selection_.HasAny(ProviderKind::Transform));
}

TEST_F(SelectionTest, LeavesOutWhatWasNeverUsed) {
    EXPECT_TRUE(Select(kSelectLeaveOut, 70));
    EXPECT_FALSE(selection_.HasAny(ProviderKind::Transform));
}

TEST_F(SelectionTest, RefusesAProviderThatDoesNotExist) {
    EXPECT_FALSE(Select(kSelectUse, 65));
    EXPECT_FALSE(Select(kSelectUse, 3, ProviderKind::Storage));
    EXPECT_FALSE(Select(kSelectLeaveOut, 65));
    EXPECT_FALSE(selection_.HasAny(ProviderKind::Transform));
}

// A selection that memory ran out for would let the files out unchanged.
TEST_F(SelectionTest, NeedsNoMemory) {
    bool selected = false;
    StageCounts counts;
    catalogue_.Add({51, ProviderKind::Transform, nullptr});
    {
        const obtest::FailingAllocations failing({});
        selected = Select(kSelectUse, 51) && Select(kSelectUse, 70);
        counts = CountStages(selection_.Transforms(), nullptr);
    }
    EXPECT_TRUE(selected);
    EXPECT_TRUE(selection_.Transforms().Contains(TransformId::ConvertFromPdf));
    EXPECT_FALSE(selection_.Transforms().Contains(TransformId::ConvertPdf));
    EXPECT_EQ(counts.perFile, 1);
    EXPECT_EQ(counts.final, 1);
}

TEST_F(SelectionTest, CountsPicturesThatFitAMailAfterTheList) {
    catalogue_.Add({2, ProviderKind::Transform, nullptr});
    ASSERT_TRUE(Select(kSelectUse, 2));
    const auto count = [&](const RunPlan* plan) {
        const StageCounts counts = CountStages(selection_.Transforms(), plan);
        return std::vector<int>{counts.beforeList, counts.afterList, counts.perFile, counts.final};
    };
    RunPlan plan;
    EXPECT_EQ(count(&plan), (std::vector{0, 0, 1, 0}));
    plan.resize.aim = ResizeAim::FitMail;
    EXPECT_EQ(count(&plan), (std::vector{0, 1, 0, 0}));
    // Settings that can't be read leave no stage out.
    EXPECT_EQ(count(nullptr), (std::vector{0, 1, 1, 0}));
}

TEST_F(SelectionTest, RefusesAnotherMode) {
    EXPECT_FALSE(Select(0, 3));
    EXPECT_FALSE(Select(3, 3));
    EXPECT_FALSE(selection_.HasAny(ProviderKind::Transform));
}

} // namespace
