// Photos that the system decodes: JPEG XR, and AVIF and raw photos, for which Wine has no codec.
#include <gtest/gtest.h>

#include <cstdio>

#include "services/transforms/photos/CarriedExif.h"
#include "services/transforms/photos/PlatformDecoder.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;

// The file with a directory that has more entries, which is put at its end.
PictureBytes WithTags(PictureBytes file, std::vector<TiffTag> tags) {
    MemorySource source(file);
    const TiffDirectories directories(source);
    for (const TiffEntry& entry : directories.Entries(directories.First())) {
        const PictureBytes value = directories.Value(entry);
        tags.push_back({entry.tag, entry.type, {value.begin(), value.end()}});
    }
    if (file.size() % 2) file.push_back(0);
    const std::size_t offset = file.size();
    const std::string added = TiffDirectory(tags, offset);
    file.insert(file.end(), added.begin(), added.end());
    for (std::size_t i = 0; i < 4; ++i) file[4 + i] = static_cast<std::uint8_t>(offset >> 8 * i);
    return file;
}

TEST(PlatformPhoto, PassesWhereACodecOrAPartOfItIsMissing) {
    constexpr long kNoVideoCodec = static_cast<long>(0xC00D5212);
    for (const long result : {kNoVideoCodec, static_cast<long>(0x88982F50), // no component
                              static_cast<long>(0x80070005),                // access denied
                              static_cast<long>(0x8007007E), static_cast<long>(0x80070677)}) {
        EXPECT_EQ(OutcomeOfPlatform(result), PictureOutcome::Unsupported) << std::hex << result;
    }
    EXPECT_EQ(OutcomeOfPlatform(static_cast<long>(0x8007000E)), PictureOutcome::TooLarge);
    EXPECT_EQ(OutcomeOfPlatform(static_cast<long>(0x88982F60)), PictureOutcome::Damaged);
}

// The bitmap is run-length encoded, so the system's codec decodes it.
TEST(PlatformPhoto, OfAPackedBmpBecomesAJpeg) {
    PictureBytes file{
        'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 62, 0, 0, 0, 40,  0, 0, 0,   8, 0, 0,
        0,   2,   0, 0, 0, 1, 0, 8, 0, 1, 0,  0, 0, 8, 0,   0, 0, 0,   0, 0, 0,
        0,   0,   0, 0, 2, 0, 0, 0, 0, 0, 0,  0, 0, 0, 200, 0, 0, 200, 0, 0, // red, green
        8,   0,   0, 0, 8, 1, 0, 1}; // a row of each, then the end
    file[2] = static_cast<std::uint8_t>(file.size());
    const auto photo = Convert(file);
    ASSERT_EQ(photo.outcome, PictureOutcome::Written);
    EXPECT_NEAR(static_cast<int>(photo.Pixels().At(4, 0, 1)), 200, 12);
    EXPECT_NEAR(static_cast<int>(photo.Pixels().At(4, 1, 0)), 200, 12);
}

TEST(PlatformPhoto, OfJpegXrBecomesAJpeg) {
    const auto photo = Convert(PhotoSample(L"stored1.jxr"));
    ASSERT_EQ(photo.outcome, PictureOutcome::Written);
    EXPECT_FALSE(photo.IsPng());
    ExpectQuarters(photo.Pixels());
}

TEST(PlatformPhoto, IsTurnedOnceAndKeepsItsDate) {
    for (unsigned orientation = 1; orientation <= 8; ++orientation) {
        const auto photo = Convert(
            WithTags(PhotoSample(L"stored" + std::to_wstring(orientation) + L".jxr"),
                     {ShortTag(0x112, {orientation}), TextTag(0x132, "2024:05:06 07:08:09")}));
        ASSERT_EQ(photo.outcome, PictureOutcome::Written);
        ExpectQuarters(photo.Pixels());
        const std::string exif = photo.Exif();
        EXPECT_NE(exif.find("2024:05:06 07:08:09"), std::string::npos);
        const PictureBytes bytes(exif.begin(), exif.end());
        MemorySource source(bytes);
        EXPECT_EQ(ExifOrientation(TiffDirectories(source)), 1u);
    }
}

TEST(PlatformPhoto, BecomesAPngOnlyWithTransparentPixels) {
    const auto opaque = Convert(PhotoSample(L"opaque.jxr"));
    EXPECT_FALSE(opaque.IsPng());
    ExpectQuarters(opaque.Pixels());
    const auto clear = Convert(PhotoSample(L"alpha.jxr"));
    ASSERT_EQ(clear.outcome, PictureOutcome::Written);
    if (clear.IsPng()) {
        EXPECT_NEAR(static_cast<int>(clear.Pixels().At(10, 10, 3)), 100, 8);
        return;
    }
    std::printf("This system decodes no alpha of JPEG XR: the photo comes out opaque.\n");
    ExpectQuarters(clear.Pixels());
}

TEST(PlatformPhoto, GivesEqualBytesForEqualFiles) {
    const auto file = PhotoSample(L"stored1.jxr");
    EXPECT_EQ(Convert(file).file, Convert(file).file);
}

TEST(PlatformPhoto, IsRefusedWhenItIsCutOrNone) {
    const auto file = PhotoSample(L"stored1.jxr");
    for (std::size_t tenths = 1; tenths < 9; tenths += 2) {
        const auto end = file.begin() + static_cast<std::ptrdiff_t>(file.size() * tenths / 10);
        EXPECT_NE(Convert(PictureBytes(file.begin(), end)).outcome, PictureOutcome::Written)
            << tenths;
    }
    const std::string none = "II\xBC\1 and no picture after it";
    EXPECT_NE(Convert({none.begin(), none.end()}).outcome, PictureOutcome::Written);
}

TEST(PlatformPhoto, IsRefusedWhenItHasTooManyPixels) {
    PictureControl control;
    control.limits.pixels = kPhotoWidth * kPhotoHeight - 1;
    EXPECT_EQ(Convert(PhotoSample(L"stored1.jxr"), PhotoRequestOfTest(), control).outcome,
              PictureOutcome::TooLarge);
    control = {};
    control.limits.memory = 40'000;
    EXPECT_EQ(Convert(PhotoSample(L"stored1.jxr"), PhotoRequestOfTest(), control).outcome,
              PictureOutcome::TooLarge);
}

TEST(PlatformPhoto, OfAvifPassesWithoutACodec) {
    const auto photo = Convert(PhotoSample(L"plain.avif"));
    if (photo.outcome == PictureOutcome::Written) {
        ExpectQuarters(photo.Pixels());
        return;
    }
    std::printf("This system has no codec for AVIF: the photo passes unchanged.\n");
    EXPECT_EQ(photo.outcome, PictureOutcome::Unsupported);
    EXPECT_TRUE(photo.file.empty());
}

// The system reads the thumbnail of such a file as a TIFF picture.
TEST(PlatformPhoto, OfASensorIsNotReplacedByItsThumbnail) {
    const auto raw = PlainTiff(16, 16, 8, 3, std::string(768, 'x'),
                               {ShortTag(262, {2}), LongTag(254, 1), LongTag(330, 8)});
    EXPECT_EQ(Convert(raw).outcome, PictureOutcome::Unsupported);
}

} // namespace
