// What of EXIF data a converted photo keeps.
#include <gtest/gtest.h>

#include "services/transforms/photos/CarriedExif.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;
using namespace std::string_literals;

PictureBytes Whole() {
    return ExifData(
        {TextTag(0x10F, "MakerCo"), ShortTag(0x112, {6}), TextTag(0x132, "2024:05:06 07:08:09")},
        {TextTag(0x9003, "2024:01:02 03:04:05"), {0x927C, 7, "maker notes"}, LongTag(0xA002, 4000)},
        {TextTag(1, "N")});
}

std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(CarriedExifTest, HasCameraDatesAndPlace) {
    const std::string carried = Text(CarriedExif(Whole(), {96, 64}));
    for (const char* text : {"MakerCo", "2024:05:06 07:08:09", "2024:01:02 03:04:05"})
        EXPECT_NE(carried.find(text), std::string::npos) << text;
    const PictureBytes bytes(carried.begin(), carried.end());
    MemorySource source(bytes);
    const TiffDirectories directories(source);
    const auto first = directories.Entries(directories.First());
    const TiffEntry* place = FindEntry(first, 0x8825);
    ASSERT_TRUE(place);
    EXPECT_TRUE(FindEntry(directories.Entries(directories.Number(*place)), 1));
}

TEST(CarriedExifTest, NamesOrientationOneAndTheNewSize) {
    const PictureBytes carried = CarriedExif(Whole(), {96, 64});
    MemorySource source(carried);
    const TiffDirectories directories(source);
    EXPECT_EQ(ExifOrientation(directories), 1u);
    const auto first = directories.Entries(directories.First());
    const auto exif = directories.Entries(directories.Number(*FindEntry(first, 0x8769)));
    EXPECT_EQ(directories.Number(*FindEntry(exif, 0xA002)), 96u);
    EXPECT_EQ(directories.Number(*FindEntry(exif, 0xA003)), 64u);
}

TEST(CarriedExifTest, LeavesMakerNotesAndTheThumbnailOut) {
    PictureBytes whole = Whole();
    EXPECT_EQ(Text(CarriedExif(whole, {96, 64})).find("maker notes"), std::string::npos);
    const std::string thumbnail = "a picture that isn't turned";
    whole.insert(whole.end(), thumbnail.begin(), thumbnail.end());
    EXPECT_EQ(Text(CarriedExif(whole, {96, 64})).find(thumbnail), std::string::npos);
}

TEST(CarriedExifTest, IsEmptyForWhatHasNoneOrIsNone) {
    EXPECT_TRUE(CarriedExif(PictureBytes{}, {1, 1}).empty());
    EXPECT_TRUE(CarriedExif(PictureBytes(100, 'x'), {1, 1}).empty());
    EXPECT_TRUE(CarriedExif(ExifData({ShortTag(0x112, {6})}, {}), {1, 1}).empty());
}

TEST(CarriedExifTest, SkipsWhatIsPastTheEnd) {
    const PictureBytes whole = Whole();
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_LT(CarriedExif(PictureBytes(whole.begin(),
                                           whole.begin() + static_cast<std::ptrdiff_t>(size)),
                              {1, 1})
                      .size(),
                  400u);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        PictureBytes changed = whole;
        changed[at] ^= 0xFF;
        EXPECT_LT(CarriedExif(changed, {1, 1}).size(), 65000u);
    }
}

TEST(CarriedExifTest, StaysWithinOneMarkerOfAJpeg) {
    std::vector<TiffTag> many;
    for (unsigned tag = 0x9000; tag < 0x9040; ++tag)
        many.push_back({tag, 7, std::string(4000, 'x')});
    const PictureBytes carried = CarriedExif(ExifData({TextTag(0x10F, "MakerCo")}, many), {1, 1});
    EXPECT_GT(carried.size(), 40000u);
    EXPECT_LT(carried.size(), 65000u);
}

// A directory that is its own EXIF directory.
TEST(CarriedExifTest, EndsForDataThatPointToThemselves) {
    PictureBytes whole = ExifData({TextTag(0x10F, "MakerCo")}, {});
    MemorySource source(whole);
    const TiffDirectories directories(source);
    const TiffEntry entry = *FindEntry(directories.Entries(8), 0x8769);
    for (int i = 0; i < 4; ++i) whole[static_cast<std::size_t>(entry.at) + i] = i == 0 ? 8 : 0;
    EXPECT_LT(CarriedExif(whole, {1, 1}).size(), 400u);
}

} // namespace
