// The colours that a fade goes through.
#include "ObLibX/src/controls/FadedColor.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

TEST(FadedColorTest, MovesEachChannelByATenthOfItsWay) {
    EXPECT_EQ(0x000000u, FadedColor(0x000000, 0xFFFFFF, 0));
    EXPECT_EQ(0x191919u, FadedColor(0x000000, 0xFFFFFF, 1));
    EXPECT_EQ(0x7F7F7Fu, FadedColor(0x000000, 0xFFFFFF, 5));
    EXPECT_EQ(0xE5E5E5u, FadedColor(0x000000, 0xFFFFFF, 9));
    EXPECT_EQ(0xFFFFFFu, FadedColor(0x000000, 0xFFFFFF, 10));
}

TEST(FadedColorTest, GoesDownToo) {
    // Each channel by itself: 0x64 up to 0xC8, 0xC8 down to 0x64, 0x0A unchanged.
    EXPECT_EQ(0x6EBE0Au, FadedColor(0x64C80A, 0xC8640A, 1));
    EXPECT_EQ(0xBE6E0Au, FadedColor(0x64C80A, 0xC8640A, 9));
    EXPECT_EQ(0xF6F6F6u, FadedColor(0xF6F6F6, 0xF6F6F6, 3));
    EXPECT_EQ(0xFE0000u, FadedColor(0xFF0000, 0xF00000, 1)) << "a part of a step is cut off";
}

} // namespace
