// Which picture of a set is drawn on which screen.
#include "ObLibX/src/dialog/ImageSet.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "tests/unit/ObLib/FatalExit.h"

namespace {

using namespace ObLibX;

// Ids from 100 on, and the end of the list.
std::vector<std::int32_t> List(std::size_t count) {
    std::vector<std::int32_t> list(count);
    std::iota(list.begin(), list.end(), 100);
    list.push_back(kImageListEnd);
    return list;
}

struct ScaleRow {
    std::int32_t dpi;
    std::int32_t scale;
};

TEST(ImageScale, GoesByTheScreensDotsPerInch) {
    constexpr ScaleRow kRows[] = {{0, 0},   {95, 0},  {96, 0},  {119, 0}, {120, 1}, {143, 1},
                                  {144, 2}, {191, 2}, {192, 3}, {239, 3}, {240, 4}, {287, 4},
                                  {288, 5}, {383, 5}, {384, 6}, {479, 6}, {480, 7}, {9999, 7}};
    for (const ScaleRow& row : kRows) EXPECT_EQ(row.scale, ScaleOfDpi(row.dpi)) << row.dpi;
}

TEST(ImageScale, GivesThePlaceInASet) {
    EXPECT_EQ(10, ImageIndex(1, 144));
    EXPECT_EQ(0, ImageIndex(0, 96));
    EXPECT_EQ(23, ImageIndex(2, 480));
    EXPECT_FATAL(ImageIndex(3, 96), "ObLibX\\src\\ImageSet.cpp");
    EXPECT_FATAL(ImageIndex(-1, 480), "ObLibX\\src\\ImageSet.cpp");
    EXPECT_FATAL(ImageIndex(0x7FFFFFFF, 96), "ObLibX\\src\\ImageSet.cpp");
}

TEST(ImageSetTest, HasOneToThreeRows) {
    for (const std::uint32_t rows : {1u, 2u, 3u}) {
        const ImageSet set(List(rows * 8).data());
        EXPECT_EQ(rows, set.rows);
        EXPECT_EQ(100, set.ids[0]);
        EXPECT_EQ(static_cast<std::int32_t>(100 + rows * 8 - 1), set.ids[rows * 8 - 1]);
        EXPECT_EQ(kImageListEnd, set.ids[rows * 8]);
    }
}

TEST(ImageSetTest, IsEmptyWithoutAList) {
    const ImageSet set;
    EXPECT_EQ(0u, set.rows);
    EXPECT_EQ(kImageListEnd, set.ids[0]);
    EXPECT_EQ(0, GetImageId(set, 0, 96));
    EXPECT_EQ(0, GetImageId(set, 2, 480));
}

TEST(ImageSetTest, EndsTheProcessForAListOfAnotherLength) {
    for (const std::size_t count : {0u, 1u, 7u, 9u, 23u, 25u, 32u}) {
        EXPECT_FATAL(ImageSet(List(count).data()), "ObLibX\\src\\ImageSet.cpp") << count;
    }
}

TEST(ImageSetTest, HasAPictureForEachStateAndScale) {
    const ImageSet set(List(16).data());
    EXPECT_EQ(110, GetImageId(set, 1, 144));
    EXPECT_EQ(100, GetImageId(set, 0, 95));
    EXPECT_EQ(101, GetImageId(set, 0, 120));
    EXPECT_EQ(115, GetImageId(set, 1, 480));
}

TEST(ImageSetTest, HasNoPictureWhereItsListEndsInsideOfARow) {
    ImageSet set(List(16).data());
    set.ids[10] = kImageListEnd;
    EXPECT_EQ(0, GetImageId(set, 1, 144));
    EXPECT_EQ(109, GetImageId(set, 1, 120));
}

TEST(ImageSetTest, HasThatOfTheFirstStateForAStateThatItLacks) {
    const ImageSet set(List(8).data());
    EXPECT_EQ(102, GetImageId(set, 1, 144));
    EXPECT_EQ(107, GetImageId(set, 2, 480));
}

} // namespace
