#include "services/archive/compress/EffortPlan.h"

#include <gtest/gtest.h>

namespace {

using obarchive::Effort;
using obarchive::EffortPlan;
using Sizes = std::vector<std::uint64_t>;

constexpr std::uint64_t kBlock = 2 * 1024 * 1024;

// How many of `count` pieces of a size are packed quickly.
int QuickOnes(EffortPlan& plan, int count, std::uint64_t size) {
    int quick = 0;
    for (int piece = 0; piece < count; ++piece) quick += plan.Next(size) == Effort::Quick;
    return quick;
}

TEST(EffortPlanTest, TwoInFiveOfALargeFilesBlocksArePackedQuickly) {
    EffortPlan plan(Sizes{100 * kBlock});
    EXPECT_EQ(QuickOnes(plan, 100, kBlock), 40);
}

TEST(EffortPlanTest, ASingleBlockIsPackedThoroughly) {
    EffortPlan plan(Sizes{kBlock});
    EXPECT_EQ(plan.Next(kBlock), Effort::Thorough);
}

TEST(EffortPlanTest, FourInFiveSmallPiecesArePackedQuicklyOneLikeTheOther) {
    EffortPlan plan(Sizes(300, 5000));
    EXPECT_EQ(QuickOnes(plan, 40, 5000), 32);
    EXPECT_EQ(QuickOnes(plan, 260, 5000), 208);
}

// A picture of 20 MB hides what quick packing loses on 14 MB of text.
TEST(EffortPlanTest, WhatIsStoredMakesRoomForQuickPacking) {
    EffortPlan none(Sizes{7 * kBlock, 10 * kBlock});
    EffortPlan stored(Sizes{7 * kBlock, 10 * kBlock});
    for (int piece = 0; piece < 10; ++piece) stored.AddStored(kBlock);
    EXPECT_EQ(QuickOnes(none, 17, kBlock), 6);
    EXPECT_EQ(QuickOnes(stored, 7, kBlock), 7);
}

TEST(EffortPlanTest, SmallPiecesNeitherTakeFromNorGiveToLargeOnes) {
    Sizes sizes(1000, 5000);
    sizes.push_back(10 * kBlock);
    EffortPlan plan(sizes);
    QuickOnes(plan, 1000, 5000);
    plan.AddStored(5000);
    EXPECT_EQ(QuickOnes(plan, 10, kBlock), 4);
}

// With pictures among the text.
TEST(EffortPlanTest, WhatIsLostStaysWithinTheAllowance) {
    constexpr std::uint64_t kPiece = 500'000;
    Sizes sizes(200, kPiece);
    EffortPlan plan(sizes);
    std::uint64_t whole = 0;
    std::uint64_t lost = 0;
    for (int piece = 0; piece < 200; ++piece) {
        if (piece % 3 == 0) {
            plan.AddStored(kPiece);
            whole += kPiece;
        } else {
            whole += kPiece * 2 / 5;
            if (plan.Next(kPiece) == Effort::Quick) lost += kPiece * 2 / 5 / 25;
        }
    }
    EXPECT_LE(lost * 1000, whole * 16);
    EXPECT_GE(lost * 1000, whole * 15);
}

} // namespace
