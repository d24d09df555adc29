// Which ids the sets of pictures have.
#include "ObLibX/src/controls/ControlImages.h"

#include <gtest/gtest.h>

#include "ObLibX/src/dialog/ImageSet.h"

namespace {

using namespace ObLibX;

struct SetRow {
    ControlImage image;
    std::int32_t firstId;
};

constexpr SetRow kRows[] = {
    {ControlImage::CheckOn, 62024},
    {ControlImage::CheckOnDisabled, 62032},
    {ControlImage::CheckOffDisabled, 62040},
    {ControlImage::CheckOff, 62048},
    {ControlImage::CheckThird, 62232},
    {ControlImage::CheckThirdDisabled, 62240},
    {ControlImage::RadioOn, 62056},
    {ControlImage::RadioOnDisabled, 62064},
    {ControlImage::RadioOffDisabled, 62072},
    {ControlImage::RadioOff, 62080},
    {ControlImage::Settings, 62088},
    {ControlImage::DownArrow, 62096},
    {ControlImage::DownArrowDisabled, 62104},
    {ControlImage::LeftArrow, 62112},
    {ControlImage::LeftArrowDisabled, 62120},
    {ControlImage::RightArrow, 62128},
    {ControlImage::RightArrowDisabled, 62136},
    {ControlImage::UpArrow, 62144},
    {ControlImage::UpArrowDisabled, 62152},
    {ControlImage::Browser, 62224},
    {ControlImage::EyeHidden, 62248},
    {ControlImage::EyeVisible, 62256},
};

TEST(ControlImagesTest, AreOneRowOfEightConsecutiveIds) {
    for (const SetRow& row : kRows) {
        const ImageSet set(ImageList(row.image));
        EXPECT_EQ(1u, set.rows) << row.firstId;
        for (std::int32_t scale = 0; scale < kImageScales; ++scale) {
            EXPECT_EQ(row.firstId + scale, set.ids[scale]);
        }
        EXPECT_EQ(kImageListEnd, set.ids[kImageScales]) << row.firstId;
    }
}

TEST(ControlImagesTest, HavePicturesForEachScaleOfTheScreen) {
    const ImageSet set(ImageList(ControlImage::Browser));
    EXPECT_EQ(62224, GetImageId(set, 0, 96));
    EXPECT_EQ(62226, GetImageId(set, 2, 144)) << "without that row, the first one's";
    EXPECT_EQ(62231, GetImageId(set, 0, 480));
}

} // namespace
