// How much of a progress bar is filled.
#include "ObLibX/src/controls/ProgressLayout.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace ObLibX;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(ProgressFill, IsAShareOfTheHighLimit) {
    EXPECT_EQ(0, FilledLength(200, 0, 100));
    EXPECT_EQ(66, FilledLength(200, 33, 100));
    EXPECT_EQ(33, FilledLength(101, 33, 100)) << "rounded down";
    EXPECT_EQ(200, FilledLength(200, 100, 100));
}

TEST(ProgressFill, StaysInsideTheBar) {
    EXPECT_EQ(200, FilledLength(200, 150, 100));
    EXPECT_EQ(0, FilledLength(200, -5, 100));
    EXPECT_EQ(200, FilledLength(200, -5, -5));
    EXPECT_EQ(0, FilledLength(200, 7, 0)) << "an empty range";
    EXPECT_EQ(0, FilledLength(-3, 7, 10));
    EXPECT_EQ(0, FilledLength(kHighest, kLowest, kHighest));
    EXPECT_EQ(kHighest, FilledLength(kHighest, kHighest, kHighest));
    EXPECT_EQ(kHighest, FilledLength(kHighest, kLowest, -1));
}

TEST(MarqueePlace, GrowsByA26thAndIsHalfAsLongAsTheBar) {
    const Marquee first = Marquee().Moved(260);
    EXPECT_EQ((Marquee{-120, 10}), first);
    EXPECT_EQ((Marquee{-110, 20}), first.Moved(260));
}

TEST(MarqueePlace, BeginsAgainOnceItHasLeftTheBar) {
    EXPECT_EQ((Marquee{260, 390}), (Marquee{250, 380}.Moved(260)));
    EXPECT_EQ((Marquee{0, 0}), (Marquee{260, 390}.Moved(260)));
    Marquee marquee;
    bool hasLeft = false;
    for (int tick = 0; tick < 100 && !hasLeft; ++tick) {
        marquee = marquee.Moved(260);
        hasLeft = marquee == Marquee{};
    }
    EXPECT_TRUE(hasLeft);
    EXPECT_EQ((Marquee{0, 0}), Marquee().Moved(0)) << "a bar without a length";
}

TEST(FilledPart, IsCutToTheBar) {
    const PixelRect bar{10, 20, 110, 40};
    EXPECT_EQ((PixelRect{10, 20, 40, 40}), FilledPart(bar, false, -50, 30));
    EXPECT_EQ((PixelRect{90, 20, 110, 40}), FilledPart(bar, false, 80, 500));
    EXPECT_EQ((PixelRect{10, 25, 110, 35}), FilledPart(bar, true, 5, 15));
    EXPECT_TRUE(FilledPart(bar, true, 15, 5).IsEmpty());
    EXPECT_TRUE(FilledPart({}, true, 0, 5).IsEmpty());
}

} // namespace
