// PNG, TIFF, WebP and BMP: each depth, with alpha and without, comes out as it went in, but
// smaller.
#include <gtest/gtest.h>

#include "services/transforms/pictures/Resize.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace obtest;
using namespace transforms;

PictureOutcome Resize(const PictureBytes& file, PictureBytes& result,
                      const ResizeRequest& request = {.value = 90},
                      const PictureControl& control = {}) {
    MemorySource source(file);
    MemoryTarget target;
    const auto outcome = ResizePicture(source, target, request, control);
    result = target.bytes;
    return outcome;
}

PictureBytes Shrunk(const PictureBytes& file, unsigned edge = 90) {
    PictureBytes result;
    EXPECT_EQ(Resize(file, result, {.value = edge}), PictureOutcome::Written);
    return result;
}

PictureOutcome OutcomeOf(const PictureBytes& file, const PictureControl& control = {}) {
    PictureBytes result;
    return Resize(file, result, {.value = 5}, control);
}

// Alpha counts for the colours; where there is none the colours say nothing.
Raster Over(Raster raster) {
    const unsigned alpha = raster.channels - 1;
    for (unsigned i = 0; i < raster.width * raster.height; ++i)
        for (unsigned c = 0; c < alpha && raster.channels % 2 == 0; ++c) {
            auto& value = raster.bytes[i * raster.channels + c];
            value =
                static_cast<std::uint8_t>(value * raster.bytes[i * raster.channels + alpha] / 255);
        }
    return raster;
}

TEST(PngPictureTest, KeepsEachKindOfChannelsAndDepth) {
    for (unsigned channels : {1u, 2u, 3u, 4u})
        for (unsigned bits : {8u, 16u}) {
            const auto photo = Photo(270, 180, channels, bits, 1, 0);
            const auto read = ParsePng(Shrunk(MakePng(photo)));
            EXPECT_EQ(read.channels, channels);
            EXPECT_EQ(read.bits, bits);
            const auto expected = Averaged(photo, 90, 60);
            if (bits == 8) {
                EXPECT_LT(Difference(Over(read), Over(expected)), 3) << channels;
            } else {
                EXPECT_LT(Difference(read, expected), 6) << channels;
            }
        }
}

TEST(PngPictureTest, KeepsColoursOfInvisiblePixelsOut) {
    Raster raster{60, 60, 4, 8, {}};
    for (unsigned i = 0; i < 3600; ++i)
        for (int value :
             i % 60 < 30 ? std::vector<int>{10, 200, 10, 255} : std::vector<int>{255, 0, 255, 0})
            raster.bytes.push_back(static_cast<std::uint8_t>(value));
    const auto read = ParsePng(Shrunk(MakePng(raster), 20));
    for (unsigned x = 0; x < 20; ++x)
        if (read.At(x, 10, 3) > 8) {
            EXPECT_NEAR(read.At(x, 10, 0), 10, 2) << x;
            EXPECT_NEAR(read.At(x, 10, 1), 200, 2) << x;
        }
}

TEST(PngPictureTest, ShrinksInterlacedPicturesAndPalettes) {
    const auto photo = Photo(270, 180, 3, 8, 1, 0);
    EXPECT_LT(
        Difference(ParsePng(Shrunk(MakePng(photo, {.interlaced = true}))), Averaged(photo, 90, 60)),
        3);
    Raster indices{120, 100, 1, 8, {}}, colours{120, 100, 3, 8, {}};
    for (unsigned i = 0; i < 12000; ++i) {
        indices.bytes.push_back(i % 120 < 60 ? 0 : 1);
        for (int value : i % 120 < 60 ? std::vector<int>{200, 10, 0} : std::vector<int>{0, 90, 250})
            colours.bytes.push_back(static_cast<std::uint8_t>(value));
    }
    const auto read = ParsePng(Shrunk(MakePalettePng(indices, {0xC80A00, 0x005AFA}), 60));
    EXPECT_EQ(read.channels, 3u);
    EXPECT_LT(Difference(read, Averaged(colours, 60, 50)), 8);
}

TEST(PngPictureTest, KeepsProfileTextsAndResolution) {
    const std::string exif = ExifOf(270, 180).substr(6), shrunk = ExifOf(90, 60).substr(6);
    const Chunks chunks{{"iCCP", std::string("p\0\0packed", 9)},
                        {"pHYs", std::string("\0\0\1\0\0\0\1\0\1", 9)},
                        {"eXIf", exif},
                        {"tEXt", std::string("Author\0a name", 13)}};
    auto expected = chunks;
    expected[2].second = shrunk;
    EXPECT_EQ(PngChunksOf(Shrunk(MakePng(Photo(270, 180, 3), {.chunks = chunks}))), expected);
}

TEST(PngPictureTest, PassesAnAnimationUnchanged) {
    PictureBytes result;
    EXPECT_EQ(
        Resize(MakePng(Photo(200, 150, 3), {.chunks = {{"acTL", std::string(8, '\1')}}}), result),
        PictureOutcome::Unchanged);
    EXPECT_TRUE(result.empty());
}

TEST(TiffPictureTest, KeepsEachKindOfChannelsDepthAndCompression) {
    for (unsigned channels : {1u, 2u, 3u, 4u})
        for (unsigned bits : {8u, 16u})
            for (int compression : {1, 5, 8, 32773}) {
                const auto photo = Photo(270, 180, channels, bits, 1, 0);
                const auto read = ParseTiff(Shrunk(MakeTiff(photo, {.compression = compression})));
                EXPECT_EQ(read.raster.channels, channels);
                EXPECT_EQ(read.raster.bits, bits);
                EXPECT_EQ(read.compression, compression);
                const auto expected = Averaged(photo, 90, 60);
                const bool deep = bits == 16;
                EXPECT_LT(deep ? Difference(read.raster, expected)
                               : Difference(Over(read.raster), Over(expected)),
                          7)
                    << channels << " " << bits;
            }
}

TEST(TiffPictureTest, KeepsTagsAndByteOrder) {
    const auto photo = Photo(270, 180, 3, 16, 1, 0);
    for (bool big : {false, true}) {
        TiffMaking making{.compression = 5};
        making.bigEndian = big;
        making.profile = "a profile";
        making.xmp = "<x/>";
        making.artist = "a name";
        making.orientation = 8;
        const auto read = ParseTiff(Shrunk(MakeTiff(photo, making)));
        EXPECT_EQ(read.bigEndian, big);
        EXPECT_EQ(read.profile, "a profile");
        EXPECT_EQ(read.xmp, "<x/>");
        EXPECT_EQ(read.artist, "a name");
        EXPECT_EQ(read.orientation, 8);
        EXPECT_LT(Difference(read.raster, Averaged(photo, 90, 60)), 3);
    }
}

TEST(TiffPictureTest, ReadsTilesAndJpegInside) {
    const auto photo = Photo(275, 183, 3, 8, 1, 0);
    EXPECT_LT(
        Difference(ParseTiff(Shrunk(MakeTiff(photo, {.compression = 5, .tiled = true}))).raster,
                   Averaged(photo, 90, 60)),
        4);
    const auto read = ParseTiff(Shrunk(MakeTiff(photo, {.compression = 7})));
    EXPECT_EQ(read.compression, 7);
    EXPECT_LT(Difference(read.raster, Averaged(photo, 90, 60)), 5);
}

TEST(TiffPictureTest, KeepsAlphaAsItIsMeant) {
    const auto photo = Photo(270, 180, 4, 8, 1, 0);
    EXPECT_EQ(ParseTiff(Shrunk(MakeTiff(photo))).extra, 2);
    EXPECT_EQ(ParseTiff(Shrunk(MakeTiff(photo, {.premultiplied = true}))).extra, 1);
}

TEST(TiffPictureTest, PassesManyPagesUnchanged) {
    PictureBytes result;
    EXPECT_EQ(Resize(MakeTiff(Photo(200, 150, 3), {.pages = 3}), result),
              PictureOutcome::Unchanged);
    EXPECT_TRUE(result.empty());
}

TEST(WebpPictureTest, KeepsLossAlphaAndMetadata) {
    for (unsigned channels : {3u, 4u})
        for (bool lossless : {false, true}) {
            const auto photo = Photo(270, 180, channels, 8, 1, 0);
            WebpMaking making;
            making.lossless = lossless;
            making.profile = "a profile";
            making.exif = ExifOf(270, 180);
            const auto read = ParseWebp(Shrunk(MakeWebp(photo, making)));
            EXPECT_EQ(read.raster.channels, channels);
            EXPECT_EQ(read.lossless, lossless);
            EXPECT_EQ(read.profile, "a profile");
            EXPECT_EQ(read.exif, ExifOf(90, 60));
            EXPECT_LT(Difference(Over(read.raster), Over(Averaged(photo, 90, 60))), 6)
                << channels << lossless;
        }
}

TEST(WebpPictureTest, PassesAnAnimationUnchanged) {
    PictureBytes result;
    EXPECT_EQ(Resize(MakeWebp(Photo(200, 150, 3), {.frames = 3}), result),
              PictureOutcome::Unchanged);
}

TEST(BmpPictureTest, KeepsDepthDirectionAlphaAndProfile) {
    for (unsigned channels : {1u, 3u, 4u})
        for (bool topDown : {false, true}) {
            const auto photo = Photo(271, 180, channels, 8, 1, 0);
            BmpMaking making;
            making.topDown = topDown;
            making.alpha = channels == 4;
            making.profile = "a profile";
            const auto read = ParseBmp(Shrunk(MakeBmp(photo, making)));
            EXPECT_EQ(read.raster.channels, channels);
            EXPECT_EQ(read.topDown, topDown);
            EXPECT_EQ(read.profile, "a profile");
            EXPECT_LT(Difference(Over(read.raster), Over(Averaged(photo, 90, 60))), 4) << channels;
        }
}

using Maker = PictureBytes (*)();
const Maker EveryKind[] = {
    [] { return MakeJpeg(Photo(60, 40, 3)); },
    [] { return MakePng(Photo(60, 40, 3)); },
    [] { return MakePng(Photo(60, 40, 3), {.interlaced = true}); },
    [] { return MakeTiff(Photo(60, 40, 3), {.compression = 5}); },
    [] { return MakeTiff(Photo(60, 40, 3), {.compression = 8, .tiled = true}); },
    [] { return MakeWebp(Photo(60, 40, 3)); },
    [] { return MakeWebp(Photo(60, 40, 4), {.lossless = true, .profile = "p"}); },
    [] { return MakeBmp(Photo(60, 40, 3)); }};

TEST(HostilePicturesTest, AreReportedWhenTheyAreCut) {
    for (const auto& make : EveryKind) {
        const auto file = make();
        for (std::size_t part : {1, 2, 3, 5, 9})
            EXPECT_EQ(
                OutcomeOf(PictureBytes(file.begin(), file.end() - static_cast<std::ptrdiff_t>(
                                                                      file.size() * part / 10))),
                PictureOutcome::Damaged)
                << int(file[0]) << " " << part;
        EXPECT_EQ(OutcomeOf(PictureBytes(file.begin(), file.begin() + 1)),
                  PictureOutcome::Unsupported);
    }
    EXPECT_EQ(OutcomeOf({}), PictureOutcome::Unsupported);
}

TEST(HostilePicturesTest, NeverEndTheProcessWhateverByteIsChanged) {
    PictureControl control;
    control.limits.pixels = 100'000;
    control.limits.memory = 2'000'000;
    for (const auto& make : EveryKind) {
        const auto file = make();
        for (std::size_t i = 0; i < file.size(); i += 1 + file.size() / 60) {
            auto damaged = file;
            damaged[i] ^= 0xFF;
            OutcomeOf(damaged, control);
        }
    }
}

TEST(HostilePicturesTest, AreRecognisedByTheirBytesAlone) {
    EXPECT_EQ(OutcomeOf({'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0, 0, 0, ';'}),
              PictureOutcome::Unchanged);
    EXPECT_EQ(OutcomeOf({'%', 'P', 'D', 'F', '-', '1', '.', '7'}), PictureOutcome::Unsupported);
    EXPECT_EQ(OutcomeOf({0xFF, 0xD8, 0xFF, 'n', 'o', ' ', 'J', 'P', 'E', 'G'}),
              PictureOutcome::Damaged);
}

// A header that promises more than any limit; the rest of the file is small.
TEST(HostilePicturesTest, AreRefusedWhenTheyAreBombs) {
    PictureControl control;
    control.limits.pixels = 2399;
    for (const auto& make : EveryKind)
        EXPECT_EQ(OutcomeOf(make(), control), PictureOutcome::TooLarge);
    control.limits = {};
    control.limits.memory = 10'000;
    EXPECT_EQ(OutcomeOf(MakePng(Photo(100, 100, 3), {.interlaced = true}), control),
              PictureOutcome::TooLarge);
    EXPECT_EQ(OutcomeOf(MakeWebp(Photo(100, 100, 3)), control), PictureOutcome::TooLarge);
    control.limits = {};
    control.limits.metadata = 1000;
    EXPECT_EQ(OutcomeOf(MakePng(Photo(60, 40, 3), {.chunks = {{"tEXt", std::string(1500, 'a')}}}),
                        control),
              PictureOutcome::TooLarge);
}

TEST(HostilePicturesTest, StopAtOnceWhenTheWorkIsCancelled) {
    std::atomic<bool> cancelled = true;
    PictureControl control;
    control.cancelled = &cancelled;
    for (const auto& make : EveryKind)
        EXPECT_EQ(OutcomeOf(make(), control), PictureOutcome::Cancelled);
}

TEST(EqualPicturesTest, GiveEqualBytes) {
    for (const auto& make : EveryKind) EXPECT_EQ(Shrunk(make(), 33), Shrunk(make(), 33));
}

} // namespace
