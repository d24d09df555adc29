// Where a spin control and its buttons are.
#include "ObLibX/src/controls/SpinLayout.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

TEST(SpinLayout, IsTwoPixelsInsideTheFramesRightEdge) {
    EXPECT_EQ((PixelRect{180, 20, 198, 45}), PlaceSpin({100, 20, 200, 45}, 18));
}

TEST(SpinLayout, CutsTheClientAtHalfHeightWithTheLowerHalfTwoPixelsLower) {
    const SpinLayout layout = LayOutSpin({0, 0, 18, 25}, 2);
    EXPECT_EQ((PixelRect{2, 2, 16, 12}), layout.up);
    EXPECT_EQ((PixelRect{2, 14, 16, 23}), layout.down);
}

TEST(SpinLayout, HitsEitherHalfOrNone) {
    const SpinLayout layout = LayOutSpin({0, 0, 18, 25}, 2);
    EXPECT_EQ(SpinPart::Up, HitSpin(layout, {2, 2}));
    EXPECT_EQ(SpinPart::Up, HitSpin(layout, {15, 11}));
    EXPECT_EQ(SpinPart::None, HitSpin(layout, {15, 12}));
    EXPECT_EQ(SpinPart::Down, HitSpin(layout, {15, 14}));
    EXPECT_EQ(SpinPart::None, HitSpin(layout, {1, 5}));
    EXPECT_EQ(SpinPart::None, HitSpin(layout, {16, 5}));
}

TEST(SpinLayout, HasArrowsLowerThanAButtonLessFour) {
    EXPECT_EQ(5, MostSpinArrow(LayOutSpin({0, 0, 18, 25}, 2)));
}

TEST(SpinLayout, HasNoButtonsWithoutRoom) {
    const SpinLayout layout = LayOutSpin({0, 0, 3, 25}, 2);
    EXPECT_TRUE(layout.up.IsEmpty() && layout.down.IsEmpty());
    EXPECT_EQ(SpinPart::None, HitSpin(layout, {1, 1}));
    EXPECT_TRUE(LayOutSpin({}, 2).up.IsEmpty());
    EXPECT_TRUE(LayOutSpin({0, 0, 18, 6}, 2).down.IsEmpty());
}

} // namespace
