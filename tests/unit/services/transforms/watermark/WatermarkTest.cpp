// Where a watermark is in a picture, and how large and strong.
#include "services/transforms/watermark/Watermark.h"

#include <gtest/gtest.h>

namespace {

using namespace transforms;

PlacedStamp Placed(WatermarkPlace place, PictureSize shown, PictureSize size = {100, 30}) {
    PlacedStamp stamp{0, 0, size, PictureBytes(std::size_t{size.width} * size.height * 4, 200)};
    Place(stamp, shown, {place, 50});
    return stamp;
}

TEST(Watermark, IsInItsCornerWithAMargin) {
    const PictureSize shown{1200, 960}; // letters of 40 pixels
    ASSERT_EQ(LetterHeight(shown, WatermarkPlace::TopLeft), 40u);
    struct {
        WatermarkPlace place;
        std::uint32_t left, top;
    } const rows[] = {{WatermarkPlace::TopLeft, 20, 20},
                      {WatermarkPlace::TopRight, 1080, 20},
                      {WatermarkPlace::BottomLeft, 20, 910},
                      {WatermarkPlace::BottomRight, 1080, 910},
                      {WatermarkPlace::Centre, 550, 465}};
    for (const auto& row : rows) {
        const PlacedStamp stamp = Placed(row.place, shown);
        EXPECT_EQ(stamp.left, row.left);
        EXPECT_EQ(stamp.top, row.top);
    }
}

TEST(Watermark, IsAsStrongAsItIsToBe) {
    const PlacedStamp stamp = Placed(WatermarkPlace::Centre, {1200, 960});
    EXPECT_EQ(stamp.pixels[0], 200);
    EXPECT_EQ(stamp.pixels[3], 100);
}

TEST(Watermark, BeginsInsideThePictureThatItDoesNotFit) {
    for (const auto place :
         {WatermarkPlace::TopLeft, WatermarkPlace::BottomRight, WatermarkPlace::Centre}) {
        const PlacedStamp stamp = Placed(place, {60, 20});
        EXPECT_EQ(stamp.left, 0u);
        EXPECT_EQ(stamp.top, 0u);
    }
    const PlacedStamp tight = Placed(WatermarkPlace::BottomRight, {104, 31});
    EXPECT_EQ(tight.left, 1u); // of 4 pixels the margin takes 3
    EXPECT_EQ(tight.top, 0u);  // of 1 pixel it takes all
}

TEST(Watermark, HasLettersBySizeOfThePicture) {
    EXPECT_EQ(LetterHeight({4000, 3000}, WatermarkPlace::BottomRight), 125u);
    EXPECT_EQ(LetterHeight({3000, 4000}, WatermarkPlace::BottomRight), 125u);
    EXPECT_EQ(LetterHeight({4000, 3000}, WatermarkPlace::Centre), 333u);
    EXPECT_EQ(LetterHeight({200, 120}, WatermarkPlace::BottomRight), 2 * kLeastLetter);
    EXPECT_EQ(LetterHeight({64, 64}, WatermarkPlace::BottomRight), kLeastLetter);
    EXPECT_EQ(LetterHeight({1000, 24}, WatermarkPlace::BottomRight), 0u);
    EXPECT_EQ(LetterHeight({0, 0}, WatermarkPlace::Centre), 0u);
}

TEST(Watermark, LeavesATenthOfThePictureFree) {
    EXPECT_EQ(LargestWatermark({1000, 505}), (PictureSize{900, 455}));
}

} // namespace
