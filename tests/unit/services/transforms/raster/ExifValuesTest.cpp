// Orientation in EXIF data, read and written in both byte orders; never outside the data.
#include "services/transforms/raster/ExifValues.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace transforms;
using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

Bytes ToBytes(const std::string& text) { return {text.begin(), text.end()}; }

// A directory with a software text before the orientation, which is of the type.
Bytes LittleExif(char orientation, char type = 3) {
    return ToBytes("II*\0\x8\0\0\0\2\0"s + "\x31\1\2\0\4\0\0\0abc\0"s + "\x12\1"s + type +
                   "\0\1\0\0\0"s + orientation + "\0\0\0\0\0\0\0"s);
}
Bytes BigExif(char orientation) {
    return ToBytes("MM\0*\0\0\0\x8\0\1"s + "\1\x12\0\3\0\0\0\1\0"s + orientation + "\0\0\0\0\0\0"s);
}

TEST(ExifValues, GiveTheOrientationInBothByteOrders) {
    for (char value = 1; value <= 8; ++value) {
        EXPECT_EQ(ExifOrientation(LittleExif(value)), value);
        EXPECT_EQ(ExifOrientation(BigExif(value)), value);
    }
}

TEST(ExifValues, CountAnythingElseAsUpright) {
    EXPECT_EQ(ExifOrientation(LittleExif(0)), kUprightOrientation);
    EXPECT_EQ(ExifOrientation(LittleExif(9)), kUprightOrientation);
    EXPECT_EQ(ExifOrientation(LittleExif(6, 2)), kUprightOrientation); // a text
    EXPECT_EQ(ExifOrientation({}), kUprightOrientation);
    Bytes other = BigExif(6);
    other[0] = 'I';
    EXPECT_EQ(ExifOrientation(other), kUprightOrientation);
}

TEST(ExifValues, SetTheOrientationAndNothingElse) {
    for (const auto make : {+[](char value) { return LittleExif(value); }, &BigExif}) {
        Bytes exif = make(6);
        SetExifOrientation(exif, kUprightOrientation);
        EXPECT_EQ(exif, make(1));
    }
}

TEST(ExifValues, StayWithinDataThatEndEarly) {
    const Bytes whole = LittleExif(6);
    const std::size_t value = 10 + 12 + 8; // header, count and the first entry
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes exif(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(ExifOrientation(exif), size < value + 4 ? kUprightOrientation : 6) << size;
        SetExifOrientation(exif, 1);
        EXPECT_EQ(exif.size(), size);
    }
}

// A main directory without entries and a second one with a thumbnail of four bytes.
Bytes ExifWithThumbnail(const std::string& thumbnail = "jpeg") {
    return ToBytes("II*\0\x8\0\0\0"s + "\0\0\xe\0\0\0"s + "\2\0"s + "\1\2\4\0\1\0\0\0\x2c\0\0\0"s +
                   "\2\2\4\0\1\0\0\0\4\0\0\0"s + "\0\0\0\0"s + thumbnail);
}

TEST(ExifValues, LoseTheThumbnail) {
    Bytes exif = ExifWithThumbnail();
    ASSERT_EQ(exif.size(), 48u);
    DropExifThumbnail(exif);
    Bytes expected = ExifWithThumbnail("\0\0\0\0"s);
    expected[10] = 0; // no second directory
    EXPECT_EQ(exif, expected);
    DropExifThumbnail(exif);
    EXPECT_EQ(exif, expected);
}

TEST(ExifValues, StayWithinDataWithHalfAThumbnail) {
    const Bytes whole = ExifWithThumbnail();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes exif(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        DropExifThumbnail(exif);
        EXPECT_EQ(exif.size(), size);
    }
}

} // namespace
