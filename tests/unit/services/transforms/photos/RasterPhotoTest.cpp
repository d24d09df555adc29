// WebP, TIFF and BMP photos become JPEG, or PNG where they have transparent pixels.
#include <gtest/gtest.h>

#include <atomic>

#include "services/transforms/photos/CarriedExif.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"

namespace {

using namespace obtest;
using namespace transforms;

std::string Text(const PictureBytes& bytes) { return {bytes.begin(), bytes.end()}; }

PictureBytes ExifWith(unsigned orientation) {
    return ExifData({TextTag(0x10F, "MakerCo"), ShortTag(0x112, {orientation})},
                    {TextTag(0x9003, "2024:01:02 03:04:05")});
}

PictureBytes TurnedWebp(unsigned orientation) {
    WebpMaking making{.lossless = true};
    making.exif = Text(ExifWith(orientation));
    return MakeWebp(Quarters(orientation), making);
}

unsigned OrientationOf(const ConvertedPhoto& photo) {
    const std::string exif = photo.Exif();
    const PictureBytes bytes(exif.begin(), exif.end());
    MemorySource source(bytes);
    return ExifOrientation(TiffDirectories(source));
}

// The maker of BMP files stores what it gets; their order is blue, green, red.
PictureBytes MakeBmpOf(Raster raster, const BmpMaking& making = {}) {
    for (std::size_t i = 0; raster.channels >= 3 && i < raster.bytes.size(); i += raster.channels)
        std::swap(raster.bytes[i], raster.bytes[i + 2]);
    return MakeBmp(raster, making);
}

using Maker = PictureBytes (*)();
const Maker kEveryKind[] = {
    [] { return MakeWebp(Quarters()); },
    [] { return MakeWebp(Quarters(), {.lossless = true}); },
    [] { return MakeTiff(Quarters()); },
    [] { return MakeTiff(Quarters(), {.compression = 5, .tiled = true}); },
    [] { return MakeTiff(Quarters(1, 3, 16), {.bigEndian = true}); },
    [] { return MakeBmpOf(Quarters()); },
    [] { return MakeBmpOf(Quarters(), {.topDown = true}); },
};

TEST(RasterPhoto, OfEachKindBecomesAJpeg) {
    for (const auto& make : kEveryKind) {
        const auto photo = Convert(make());
        ASSERT_EQ(photo.outcome, PictureOutcome::Written);
        EXPECT_FALSE(photo.IsPng());
        ExpectQuarters(photo.Pixels());
    }
}

TEST(RasterPhoto, HasColoursOfHalfResolutionOnlyWhereTheFileHasThem) {
    EXPECT_EQ(ParseJpeg(Convert(MakeWebp(Quarters())).file).across, 2);
    EXPECT_EQ(ParseJpeg(Convert(MakeWebp(Quarters(), {.lossless = true})).file).across, 1);
    EXPECT_EQ(ParseJpeg(Convert(MakeTiff(Quarters())).file).across, 1);
    EXPECT_EQ(ParseJpeg(Convert(MakeBmpOf(Quarters())).file).across, 1);
}

TEST(RasterPhoto, IsTurnedOnce) {
    for (unsigned orientation = 1; orientation <= 8; ++orientation) {
        const auto webp = Convert(TurnedWebp(orientation));
        ExpectQuarters(webp.Pixels());
        EXPECT_EQ(OrientationOf(webp), 1u);
        const auto tiff =
            Convert(MakeTiff(Quarters(orientation),
                             {.artist = "A name", .orientation = static_cast<int>(orientation)}));
        ExpectQuarters(tiff.Pixels());
        EXPECT_EQ(OrientationOf(tiff), 1u);
    }
}

TEST(RasterPhoto, KeepsMakerAndDate) {
    const std::string webp = Convert(TurnedWebp(6)).Exif();
    EXPECT_NE(webp.find("MakerCo"), std::string::npos);
    EXPECT_NE(webp.find("2024:01:02 03:04:05"), std::string::npos);
    EXPECT_NE(Convert(MakeTiff(Quarters(), {.artist = "A name"})).Exif().find("A name"),
              std::string::npos);
}

TEST(RasterPhoto, KeepsAProfileThatFitsItsColours) {
    std::string profile(132, '\0');
    profile.replace(0, 4, std::string("\0\0\0\x84", 4));
    profile.replace(12, 12, "mntrRGB XYZ ");
    profile.replace(36, 4, "acsp");
    WebpMaking webp;
    webp.profile = profile;
    TiffMaking tiff;
    tiff.profile = profile;
    BmpMaking bmp;
    bmp.profile = profile;
    EXPECT_EQ(Convert(MakeWebp(Quarters(), webp)).Profile(), profile);
    EXPECT_EQ(Convert(MakeTiff(Quarters(), tiff)).Profile(), profile);
    EXPECT_EQ(Convert(MakeBmpOf(Quarters(), bmp)).Profile(), profile);
    // Of greys, and of none.
    tiff.profile.replace(16, 4, "GRAY");
    EXPECT_EQ(Convert(MakeTiff(Quarters(), tiff)).Profile(), "");
    tiff.profile = "no profile";
    EXPECT_EQ(Convert(MakeTiff(Quarters(), tiff)).Profile(), "");
}

TEST(RasterPhoto, BecomesAPngOnlyWithTransparentPixels) {
    Raster clear = Quarters(1, 4);
    clear.bytes[4 * 500 + 3] = 100;
    const PictureBytes opaque[] = {MakeWebp(Quarters(1, 4), {.lossless = true}),
                                   MakeTiff(Quarters(1, 4)),
                                   MakeBmpOf(Quarters(1, 4), {.alpha = true})};
    const PictureBytes transparent[] = {MakeWebp(clear, {.lossless = true}), MakeTiff(clear),
                                        MakeBmpOf(clear, {.alpha = true})};
    for (const auto& file : opaque) {
        const auto photo = Convert(file);
        EXPECT_FALSE(photo.IsPng());
        ExpectQuarters(photo.Pixels());
    }
    for (const auto& file : transparent) {
        const auto photo = Convert(file);
        ASSERT_TRUE(photo.IsPng());
        EXPECT_EQ(photo.Pixels().bytes, clear.bytes);
    }
}

TEST(RasterPhoto, IsTurnedWithItsTransparentPixels) {
    Raster clear = Quarters(6, 4);
    clear.bytes[3] = 100; // stored first; the turn makes it the last of the first row
    const auto photo = Convert(MakeTiff(clear, {.orientation = 6}));
    ASSERT_TRUE(photo.IsPng());
    ExpectQuarters(photo.Pixels());
    EXPECT_EQ(photo.Pixels().At(kPhotoWidth - 1, 0, 3), 100u);
}

TEST(RasterPhoto, HasItsColoursBackFromMultipliedOnes) {
    Raster half = Quarters(1, 4);
    for (std::size_t i = 0; i < half.bytes.size(); i += 4) {
        for (std::size_t c = 0; c < 3; ++c)
            half.bytes[i + c] = static_cast<std::uint8_t>(half.bytes[i + c] / 2);
        half.bytes[i + 3] = 128;
    }
    const auto photo = Convert(MakeTiff(half, {.premultiplied = true}));
    ASSERT_TRUE(photo.IsPng());
    ExpectQuarters(photo.Pixels(), 2);
}

TEST(RasterPhoto, OfABmpWhoseAlphaWasNeverSetIsOpaque) {
    Raster unset = Quarters(1, 4);
    for (std::size_t i = 3; i < unset.bytes.size(); i += 4) unset.bytes[i] = 0;
    const auto photo = Convert(MakeBmpOf(unset, {.alpha = true}));
    EXPECT_FALSE(photo.IsPng());
    ExpectQuarters(photo.Pixels());
    EXPECT_TRUE(Convert(MakeTiff(unset)).IsPng());
}

TEST(RasterPhoto, OfGreyStaysGrey) {
    const Raster grey = Photo(90, 60, 1, 8, 1, 0);
    for (const auto& file : {MakeTiff(grey), MakeBmpOf(grey)}) {
        const auto photo = Convert(file);
        ASSERT_EQ(photo.Pixels().channels, 1u);
        EXPECT_LT(Difference(photo.Pixels(), grey), 3);
    }
    const auto deep = Convert(MakeTiff(Photo(90, 60, 1, 16, 1, 0)));
    EXPECT_LT(Difference(deep.Pixels(), grey), 3);
}

TEST(RasterPhoto, OfATiffMayBeAFaxOrHaveAPalette) {
    std::string fax;
    for (int y = 0; y < 16; ++y) fax += {'\xFF', '\0'}; // 0 is white: the left half is black
    const auto page = Convert(PlainTiff(16, 16, 1, 1, fax, {ShortTag(262, {0})}));
    ASSERT_EQ(page.outcome, PictureOutcome::Written);
    EXPECT_LT(page.Pixels().At(3, 8, 0), 20u);
    EXPECT_GT(page.Pixels().At(12, 8, 0), 235u);
    std::vector<unsigned> colours(768, 0);
    colours[7] = 0xFFFF; // red of the colour 7
    const auto palette = Convert(PlainTiff(16, 16, 8, 1, std::string(256, '\7'),
                                           {ShortTag(262, {3}), ShortTag(320, colours)}));
    ASSERT_EQ(palette.outcome, PictureOutcome::Written);
    EXPECT_GT(palette.Pixels().At(8, 8, 0), 245u);
    EXPECT_LT(palette.Pixels().At(8, 8, 1), 10u);
    const auto negative =
        Convert(PlainTiff(16, 16, 8, 1, std::string(256, '\x10'), {ShortTag(262, {0})}));
    EXPECT_NEAR(static_cast<int>(negative.Pixels().At(8, 8, 0)), 239, 2);
}

TEST(RasterPhoto, PassesWhenItIsAnAnimationOrHasManyPages) {
    for (const auto& file :
         {MakeWebp(Quarters(), {.frames = 3}), MakeTiff(Quarters(), {.pages = 2})}) {
        const auto photo = Convert(file);
        EXPECT_EQ(photo.outcome, PictureOutcome::Unchanged);
        EXPECT_TRUE(photo.file.empty());
    }
}

TEST(RasterPhoto, PassesWhenItsKindIsNotWanted) {
    PhotoRequest request = PhotoRequestOfTest();
    request.kinds = kAllPhotoKinds & ~static_cast<unsigned>(PhotoKind::Tiff);
    EXPECT_EQ(Convert(MakeTiff(Quarters()), request).outcome, PictureOutcome::Unsupported);
    EXPECT_EQ(Convert(MakeBmpOf(Quarters()), request).outcome, PictureOutcome::Written);
}

TEST(RasterPhoto, PassesWhenItIsAJpegOrAPngUnderAnyName) {
    EXPECT_EQ(Convert(MakeJpeg(Quarters())).outcome, PictureOutcome::Unsupported);
    EXPECT_EQ(Convert(MakePng(Quarters())).outcome, PictureOutcome::Unsupported);
    EXPECT_EQ(Convert({}).outcome, PictureOutcome::Unsupported);
}

TEST(RasterPhoto, IsCodedByTheQuality) {
    PhotoRequest request = PhotoRequestOfTest();
    const auto file = MakeTiff(Photo(200, 150, 3));
    request.quality = 60;
    const auto small = Convert(file, request).file.size();
    request.quality = 95;
    EXPECT_LT(2 * small, Convert(file, request).file.size());
}

TEST(HostileRasterPhoto, IsDamagedWhenItIsCut) {
    for (const auto& make : kEveryKind) {
        const auto file = make();
        for (std::size_t tenths = 1; tenths < 10; ++tenths) {
            if (file.size() * tenths < 200) continue; // its kind is unknown
            const auto end = file.begin() + static_cast<std::ptrdiff_t>(file.size() * tenths / 10);
            EXPECT_EQ(Convert(PictureBytes(file.begin(), end)).outcome, PictureOutcome::Damaged)
                << tenths;
        }
    }
}

TEST(HostileRasterPhoto, DoesNotEndTheProcessWhateverByteIsChanged) {
    PictureControl control;
    control.limits.pixels = 100'000;
    control.limits.memory = 4'000'000;
    for (const auto& make : kEveryKind) {
        const auto file = make();
        for (std::size_t at = 0; at < file.size(); at += 1 + file.size() / 120) {
            auto changed = file;
            changed[at] ^= 0xFF;
            EXPECT_TRUE(Convert(changed, PhotoRequestOfTest(), control).IsAsReported()) << at;
        }
    }
}

// The longest side that a JPEG can have.
TEST(RasterPhoto, IsTooLargeForAJpegAboveItsLongestSide) {
    for (const auto& [width, outcome] : {std::pair{65'500u, PictureOutcome::Written},
                                         std::pair{65'501u, PictureOutcome::TooLarge}}) {
        const Raster line{width, 1, 3, 8, PictureBytes(std::size_t{3} * width, 90)};
        EXPECT_EQ(Convert(MakeBmp(line)).outcome, outcome) << width;
    }
}

TEST(HostileRasterPhoto, IsRefusedWhenItIsABomb) {
    PictureControl control;
    control.limits.pixels = kPhotoWidth * kPhotoHeight - 1;
    for (const auto& make : kEveryKind)
        EXPECT_EQ(Convert(make(), PhotoRequestOfTest(), control).outcome, PictureOutcome::TooLarge);
    // A fax of 200 megapixels in a few bytes, which has to be in memory at once.
    const auto fax = PlainTiff(20000, 10000, 1, 1, "x", {ShortTag(262, {0}), ShortTag(259, {4})});
    EXPECT_EQ(Convert(fax).outcome, PictureOutcome::TooLarge);
    control = {};
    control.limits.memory = 10'000;
    EXPECT_EQ(
        Convert(MakeTiff(Quarters(6), {.orientation = 6}), PhotoRequestOfTest(), control).outcome,
        PictureOutcome::TooLarge);
}

TEST(HostileRasterPhoto, IsLeftWhenTheWorkIsCancelled) {
    const std::atomic<bool> cancelled = true;
    PictureControl control;
    control.cancelled = &cancelled;
    for (const auto& make : kEveryKind)
        EXPECT_EQ(Convert(make(), PhotoRequestOfTest(), control).outcome,
                  PictureOutcome::Cancelled);
}

TEST(EqualRasterPhotos, GiveEqualBytes) {
    for (const auto& make : kEveryKind) EXPECT_EQ(Convert(make()).file, Convert(make()).file);
}

} // namespace
