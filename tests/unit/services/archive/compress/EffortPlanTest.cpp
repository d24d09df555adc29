#include "services/archive/compress/EffortPlan.h"

#include <gtest/gtest.h>

namespace {

using obarchive::AssumedGain;
using obarchive::Effort;
using obarchive::FirstEffort;
using obarchive::IsGainMeasured;
using obarchive::IsPicked;
using obarchive::PeerLoss;
using obarchive::QuickResult;
using obarchive::ThoroughShare;

constexpr std::size_t kBlock = 2 * 1024 * 1024;

// A block of even text is one long deflate block after the other; a block of a program or a web
// page is many short ones.
constexpr QuickResult kEvenText{kBlock, kBlock / 3, 8};
constexpr QuickResult kWebPage{kBlock, kBlock / 7, 50};

TEST(EffortPlanTest, LargePiecesBeginWithTheQuickestEffort) {
    EXPECT_EQ(FirstEffort(kBlock), Effort::Quick);
    EXPECT_EQ(FirstEffort(5'000), Effort::Careful);
}

TEST(EffortPlanTest, ShortDeflateBlocksCostTheUsualProgramMore) {
    EXPECT_EQ(PeerLoss(kEvenText), 0);
    EXPECT_GT(PeerLoss(kWebPage), 0.02);
    EXPECT_LE(PeerLoss({kBlock, kBlock / 7, 5'000}), 0.04) << "the estimate is bounded";
}

TEST(EffortPlanTest, MostOfAnEvenTextWithALargeGainIsCompressedThoroughly) {
    const double share = ThoroughShare(kEvenText, 0.06);
    EXPECT_GT(share, 0.6);
    EXPECT_LT(share, 0.85);
    EXPECT_GT(ThoroughShare(kEvenText, 0.12), share);
}

TEST(EffortPlanTest, NoWorkIsSpentOnAGainThatTheUsualProgramLosesItself) {
    EXPECT_EQ(ThoroughShare(kWebPage, 0.045), 0);
    EXPECT_GT(ThoroughShare(kWebPage, 0.12), 0.4) << "tables gain this much";
}

TEST(EffortPlanTest, NoWorkIsSpentOnASmallGain) {
    EXPECT_EQ(ThoroughShare(kEvenText, 0.03), 0);
    EXPECT_EQ(ThoroughShare(kEvenText, 0), 0);
    EXPECT_EQ(ThoroughShare(kEvenText, -0.01), 0);
}

TEST(EffortPlanTest, NoWorkIsSpentOnWhatHardlyShrinks) {
    constexpr QuickResult kPicture{kBlock, kBlock - kBlock / 10, 8};
    EXPECT_EQ(ThoroughShare(kPicture, 0.12), 0);
    EXPECT_FALSE(IsGainMeasured(kPicture));
}

TEST(EffortPlanTest, SomeOfTheSmallPiecesThatShrinkLittleAreCompressedThoroughly) {
    constexpr QuickResult kNote{6'000, 2'700, 1};
    constexpr QuickResult kHeader{6'000, 1'200, 1};
    const double share = ThoroughShare(kNote, AssumedGain(kNote.rawSize));
    EXPECT_GT(share, 0.2);
    EXPECT_LT(share, 0.5);
    EXPECT_EQ(ThoroughShare(kHeader, AssumedGain(kHeader.rawSize)), 0);
}

TEST(EffortPlanTest, TheGainIsMeasuredWhereItMayMatter) {
    EXPECT_TRUE(IsGainMeasured(kEvenText));
    EXPECT_TRUE(IsGainMeasured(kWebPage));
    EXPECT_FALSE(IsGainMeasured({6'000, 2'700, 1})) << "the sample would be the piece";
    EXPECT_TRUE(IsGainMeasured({500'000, 170'000, 2}));
    EXPECT_FALSE(IsGainMeasured({500'000, 70'000, 12}));
}

TEST(EffortPlanTest, AShareIsSpreadEvenlyOverThePieces) {
    for (const double share : {0.0, 0.1, 0.31, 0.5, 0.9, 1.0}) {
        for (const std::size_t first : {0U, 1'000U, 5'000'000U}) {
            int picked = 0;
            for (std::size_t piece = 0; piece < 100; ++piece) {
                picked += IsPicked(first + piece, share);
            }
            EXPECT_NEAR(picked, share * 100, 2) << first;
        }
    }
}

} // namespace
