// How large the page of a picture is, and where the picture is on it.
#include "services/transforms/topdf/PageLayout.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;

struct Corner {
    double x, y;
};

// Where a corner of the picture is drawn: (0, 0) is its lower left one as it is stored.
Corner DrawnAt(const PageLayout& layout, double x, double y) {
    double m[6] = {};
    std::istringstream words(layout.matrix);
    for (double& number : m) words >> number;
    return {m[0] * x + m[2] * y + m[4], m[1] * x + m[3] * y + m[5]};
}

TEST(PageLayout, HasThePictureSizeAtItsResolution) {
    const auto layout = LayOut({600, 300}, 1, {300, 150}, PdfPageSize::AsPicture);
    EXPECT_DOUBLE_EQ(layout.width, 144);
    EXPECT_DOUBLE_EQ(layout.height, 144);
    EXPECT_EQ(layout.matrix, "144 0 0 144 0 0 cm");
}

TEST(PageLayout, FitsASheetWithoutAPlausibleResolution) {
    for (const Resolution resolution : {Resolution{}, Resolution{49, 49}, Resolution{2401, 300},
                                        Resolution{100, 0}, Resolution{-100, -100}}) {
        const auto layout = LayOut({3000, 2000}, 1, resolution, PdfPageSize::AsPicture);
        EXPECT_NEAR(layout.width, 841.89, 0.01);
        EXPECT_NEAR(layout.height, 561.26, 0.01);
    }
    // More than viewers show, and less.
    EXPECT_NEAR(LayOut({60000, 60000}, 1, {72, 72}, PdfPageSize::AsPicture).width, 595.28, 0.01);
    EXPECT_NEAR(LayOut({2, 2}, 1, {72, 72}, PdfPageSize::AsPicture).width, 595.28, 0.01);
    EXPECT_EQ(LayOut({1, 10000}, 1, {}, PdfPageSize::AsPicture).width, 3);
}

TEST(PageLayout, CentresThePictureOnASheet) {
    const auto small = LayOut({100, 50}, 1, {100, 100}, PdfPageSize::Letter);
    EXPECT_EQ(small.width, 792); // turned as the picture is
    EXPECT_EQ(small.height, 612);
    EXPECT_EQ(small.matrix, "72 0 0 36 360 288 cm");
    const auto large = LayOut({1000, 2000}, 1, {72, 72}, PdfPageSize::A4);
    EXPECT_NEAR(large.height, 841.89, 0.01);
    EXPECT_NEAR(DrawnAt(large, 0, 1).y, 841.89, 0.01);
    EXPECT_NEAR(DrawnAt(large, 0, 0).x, (595.276 - 841.89 / 2) / 2, 0.01);
}

// EXIF names where the first row and the first column are shown.
TEST(PageLayout, TurnsThePictureByItsOrientation) {
    for (unsigned orientation = 1; orientation <= 8; ++orientation) {
        const PictureSize stored = orientation < 5 ? PictureSize{200, 100} : PictureSize{100, 200};
        const auto layout = LayOut(stored, orientation, {72, 72}, PdfPageSize::AsPicture);
        EXPECT_EQ(layout.width, 200);
        EXPECT_EQ(layout.height, 100);
        // The first pixel, and the one at the end of its row.
        const Corner first = DrawnAt(layout, 0, 1), rowEnd = DrawnAt(layout, 1, 1);
        constexpr Corner kFirst[] = {{0, 100}, {200, 100}, {200, 0}, {0, 0},
                                     {0, 100}, {200, 100}, {200, 0}, {0, 0}};
        constexpr Corner kRowEnd[] = {{200, 100}, {0, 100}, {0, 0},     {200, 0},
                                      {0, 0},     {200, 0}, {200, 100}, {0, 100}};
        EXPECT_EQ(first.x, kFirst[orientation - 1].x) << orientation;
        EXPECT_EQ(first.y, kFirst[orientation - 1].y) << orientation;
        EXPECT_EQ(rowEnd.x, kRowEnd[orientation - 1].x) << orientation;
        EXPECT_EQ(rowEnd.y, kRowEnd[orientation - 1].y) << orientation;
    }
}

std::string Ratio(unsigned above, unsigned below) {
    std::string bytes;
    for (const unsigned value : {above, below})
        for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

Resolution OfExif(unsigned value, unsigned unit) {
    const auto exif = ExifData(
        {{0x11A, 5, Ratio(value, 1)}, {0x11B, 5, Ratio(2 * value, 2)}, ShortTag(0x128, {unit})},
        {});
    MemorySource memory(exif);
    return ResolutionOfExif(TiffDirectories(memory));
}

TEST(ExifResolution, IsCountedInInches) {
    EXPECT_DOUBLE_EQ(OfExif(300, 2).across, 300);
    EXPECT_DOUBLE_EQ(OfExif(300, 2).down, 300);
    EXPECT_DOUBLE_EQ(OfExif(100, 3).down, 254);
    EXPECT_EQ(OfExif(72, 2).across, 0); // what cameras write when they don't know
}

} // namespace
