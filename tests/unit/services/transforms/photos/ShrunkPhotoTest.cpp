// Photos that are converted and made smaller in one pass: decoded once, turned once, stamped and
// coded once.
#include <gtest/gtest.h>

#include <algorithm>

#include "services/transforms/photos/CarriedExif.h"
#include "services/transforms/photos/FittedPhoto.h"
#include "services/transforms/raster/Stamp.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;

// The whole picture in one colour, so that it shows wherever a stamp is.
class Cover final : public Stamp {
public:
    mutable PictureSize asked;

    PlacedStamp For(PictureSize shown) const override {
        asked = shown;
        PlacedStamp stamp{0, 0, shown, {}};
        for (unsigned i = 0; i < shown.width * shown.height; ++i)
            stamp.pixels.insert(stamp.pixels.end(), {200, 40, 60, 255});
        return stamp;
    }
};

ConvertedPhoto Shrink(const PictureBytes& file, const ShrinkStep& step,
                      const PhotoRequest& request = PhotoRequestOfTest()) {
    MemorySource source(file);
    MemoryTarget target;
    ConvertedPhoto photo;
    photo.outcome = RunPictureWork([&] {
        FittedPhoto(request).Make(source, target, step, {});
        return PictureOutcome::Written;
    });
    photo.file = target.bytes;
    return photo;
}

PictureSize SizeOf(const ConvertedPhoto& photo) {
    const Raster pixels = photo.Pixels();
    return {pixels.width, pixels.height};
}

std::string SizeInExif(const ConvertedPhoto& photo) {
    const std::string exif = photo.Exif();
    const PictureBytes bytes(exif.begin(), exif.end());
    MemorySource source(bytes);
    const TiffDirectories file(source);
    const auto first = file.Entries(file.First());
    const TiffEntry* const place = FindEntry(first, 0x8769);
    if (!place) return "none";
    const auto entries = file.Entries(file.Number(*place));
    const TiffEntry* const width = FindEntry(entries, 0xA002);
    const TiffEntry* const height = FindEntry(entries, 0xA003);
    if (!width || !height) return "none";
    return std::to_string(file.Number(*width)) + "x" + std::to_string(file.Number(*height));
}

TEST(ShrunkPhoto, IsTheConvertedOneAtTheFinestStep) {
    for (const auto& file : {MakeTiff(Photo(300, 200, 3)), MakeWebp(Photo(300, 200, 3)),
                             MakeTiff(Photo(300, 200, 3), {.orientation = 6})}) {
        const PictureBytes shrunk = Shrink(file, {.coarseness = 1}).file;
        EXPECT_FALSE(shrunk.empty());
        EXPECT_EQ(shrunk, Convert(file).file);
    }
}

TEST(ShrunkPhoto, IsCodedAtMostAsFinelyAsTheRequestAsks) {
    const PictureBytes file = MakeTiff(Photo(300, 200, 3));
    PhotoRequest low = PhotoRequestOfTest();
    low.quality = 70;
    const auto table = [](const ConvertedPhoto& photo) {
        const ReadJpeg read = ParseJpeg(photo.file);
        return std::vector<int>(std::begin(read.table), std::end(read.table));
    };
    EXPECT_EQ(table(Shrink(file, {.coarseness = 4}, low)), table(Convert(file, low)));
    EXPECT_EQ(table(Shrink(file, {.coarseness = 80}, low)),
              table(Shrink(file, {.coarseness = 80})));
}

TEST(ShrunkPhoto, IsTurnedOnceAndHasTheSizeOfTheStep) {
    for (unsigned orientation = 1; orientation <= 8; ++orientation) {
        const auto tiff =
            Shrink(MakeTiff(Quarters(orientation), {.orientation = static_cast<int>(orientation)}),
                   {.longestEdge = 48});
        ASSERT_EQ(tiff.outcome, PictureOutcome::Written);
        EXPECT_EQ(SizeOf(tiff), (PictureSize{48, 32})) << orientation;
        const Raster pixels = tiff.Pixels();
        EXPECT_GT(pixels.At(5, 5, 0), 190u) << orientation;   // red at the top left
        EXPECT_GT(pixels.At(43, 5, 1), 190u) << orientation;  // green beside it
        EXPECT_GT(pixels.At(5, 27, 2), 190u) << orientation;  // blue below
        EXPECT_GT(pixels.At(43, 27, 0), 190u) << orientation; // white
    }
}

TEST(ShrunkPhoto, KeepsItsExifDataWithItsNewSize) {
    WebpMaking making{.lossless = true};
    const PictureBytes exif = ExifData(
        {TextTag(0x10F, "MakerCo"), ShortTag(0x112, {6})},
        {TextTag(0x9003, "2024:01:02 03:04:05"), LongTag(0xA002, 64), LongTag(0xA003, 96)});
    making.exif.assign(exif.begin(), exif.end());
    const PictureBytes file = MakeWebp(Quarters(6), making);
    const auto photo = Shrink(file, {.longestEdge = 48});
    EXPECT_EQ(SizeOf(photo), (PictureSize{48, 32}));
    EXPECT_EQ(SizeInExif(Convert(file)), "96x64");
    EXPECT_EQ(SizeInExif(photo), "48x32");
    EXPECT_NE(photo.Exif().find("2024:01:02 03:04:05"), std::string::npos);
}

TEST(ShrunkPhoto, KeepsTransparentPixelsInAPng) {
    Raster clear = Quarters(1, 4);
    for (unsigned i = 0; i < kPhotoWidth * kPhotoHeight / 2; ++i) clear.bytes[4 * i + 3] = 100;
    const auto photo = Shrink(MakeTiff(clear), {.longestEdge = 48});
    ASSERT_TRUE(photo.IsPng());
    const Raster pixels = photo.Pixels();
    ASSERT_EQ(pixels.channels, 4u);
    EXPECT_EQ(pixels.width, 48u);
    EXPECT_NEAR(static_cast<int>(pixels.At(5, 5, 3)), 100, 2);
    EXPECT_EQ(pixels.At(5, 27, 3), 255u);
}

TEST(ShrunkPhoto, HasTheStampInItsNewSize) {
    const Cover cover;
    const auto photo =
        Shrink(MakeTiff(Quarters(6), {.orientation = 6}), {.longestEdge = 48, .stamp = &cover});
    EXPECT_EQ(cover.asked, (PictureSize{48, 32}));
    const Raster pixels = photo.Pixels();
    const int wanted[] = {200, 40, 60};
    for (unsigned c = 0; c < 3; ++c)
        EXPECT_NEAR(static_cast<int>(pixels.At(20, 20, c)), wanted[c], 4);
}

TEST(ShrunkPhoto, IsNotMadeOfWhatAConversionPasses) {
    EXPECT_EQ(Shrink(MakeTiff(Quarters(), {.pages = 2}), {}).outcome, PictureOutcome::Unsupported);
    EXPECT_EQ(Shrink(MakeJpeg(Quarters()), {}).outcome, PictureOutcome::Unsupported);
    PictureBytes cut = MakeTiff(Quarters());
    cut.resize(cut.size() / 2);
    EXPECT_EQ(Shrink(cut, {}).outcome, PictureOutcome::Damaged);
}

TEST(ShrunkPhoto, IsRecognisedByItsHeaders) {
    const auto can = [](const PictureBytes& file, unsigned kinds = kAllPhotoKinds) {
        MemorySource source(file);
        return CanConvertPhoto(source, kinds, {});
    };
    EXPECT_EQ(can(MakeTiff(Quarters())), PictureOutcome::Written);
    EXPECT_EQ(can(MakeTiff(Quarters(), {.pages = 2})), PictureOutcome::Unchanged);
    EXPECT_EQ(can(MakeWebp(Quarters(), {.frames = 2})), PictureOutcome::Unchanged);
    EXPECT_EQ(can(MakeJpeg(Quarters())), PictureOutcome::Unsupported);
    EXPECT_EQ(can(MakeBmp(Quarters()), static_cast<unsigned>(PhotoKind::Tiff)),
              PictureOutcome::Unsupported);
    EXPECT_EQ(can({}), PictureOutcome::Unsupported);
}

TEST(ShrunkPhoto, ReportsItsSizeAsItIsStored) {
    for (const auto& file :
         {MakeTiff(Quarters(6), {.orientation = 6}), MakeWebp(Quarters(6)), MakeBmp(Quarters(6))}) {
        MemorySource source(file);
        EXPECT_EQ(SizeOfPhoto(source, PhotoRequestOfTest(), {}),
                  (PictureSize{kPhotoHeight, kPhotoWidth}));
    }
}

} // namespace
