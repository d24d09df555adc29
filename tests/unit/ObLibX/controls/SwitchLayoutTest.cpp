// The parts of a switch.
#include "ObLibX/src/controls/SwitchLayout.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

constexpr PixelRect kTrack{30, 2, 80, 18};

TEST(SwitchLayoutTest, HasItsTextInTheLeftThird) {
    const SwitchAreas areas = SwitchAreasOf({0, 0, 82, 20}, 2);
    EXPECT_EQ((PixelRect{2, 2, 28, 18}), areas.text);
    EXPECT_EQ((PixelRect{28, 2, 80, 18}), areas.track);
}

TEST(SwitchLayoutTest, HasItsThumbAtTheEndOfItsState) {
    EXPECT_EQ((PixelRect{30, 2, 42, 18}), RestingThumb(kTrack, false));
    EXPECT_EQ((PixelRect{68, 2, 80, 18}), RestingThumb(kTrack, true));
    EXPECT_FALSE(IsThumbOn(kTrack, RestingThumb(kTrack, false)));
    EXPECT_TRUE(IsThumbOn(kTrack, RestingThumb(kTrack, true)));
}

TEST(SwitchLayoutTest, MovesItsThumbWithTheMouseInsideTheTrack) {
    EXPECT_EQ(kTrack.left, DraggedThumb(kTrack, -1000).left);
    EXPECT_EQ(kTrack.left, DraggedThumb(kTrack, 36).left);
    EXPECT_EQ(31, DraggedThumb(kTrack, 37).left);
    EXPECT_EQ(kTrack.right, DraggedThumb(kTrack, 1000).right);
    for (std::int32_t x = kTrack.left; x < kTrack.right; ++x) {
        EXPECT_EQ(12, DraggedThumb(kTrack, x).Width());
    }
}

TEST(SwitchLayoutTest, IsOnRightOfTheMiddleOnly) {
    EXPECT_FALSE(IsThumbOn(kTrack, DraggedThumb(kTrack, 54)));
    EXPECT_FALSE(IsThumbOn(kTrack, DraggedThumb(kTrack, 55))) << "exactly in the middle";
    EXPECT_TRUE(IsThumbOn(kTrack, DraggedThumb(kTrack, 56)));
}

TEST(SwitchLayoutTest, TakesAnAreaWithoutRoom) {
    const SwitchAreas areas = SwitchAreasOf({0, 0, 1, 1}, 2);
    EXPECT_TRUE(areas.track.IsEmpty());
    EXPECT_TRUE(RestingThumb(areas.track, true).IsEmpty());
    EXPECT_TRUE(DraggedThumb(areas.track, 5).IsEmpty());
}

} // namespace
