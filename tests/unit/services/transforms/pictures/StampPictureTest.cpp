// A stamp laid over pictures of each form: its pixels come out where they are wanted and in their
// colours, and all others stay as they were.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include "services/transforms/pictures/Picture.h"
#include "services/transforms/pictures/StampPicture.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace obtest;
using namespace transforms;

using Colour = std::array<unsigned, 3>;
constexpr Colour kRed{200, 40, 60};

// A rectangle of one colour. With `second` its right half has that colour.
class Rectangle final : public Stamp {
public:
    unsigned left = 16, top = 8, width = 32, height = 16, opaque = 255;
    Colour colour = kRed, second = kRed;
    mutable PictureSize asked;

    PlacedStamp For(PictureSize shown) const override {
        asked = shown;
        PlacedStamp stamp{left, top, {width, height}, {}};
        for (unsigned i = 0; i < width * height; ++i) {
            for (unsigned value : i % width < width / 2 ? colour : second)
                stamp.pixels.push_back(static_cast<std::uint8_t>(value));
            stamp.pixels.push_back(static_cast<std::uint8_t>(opaque));
        }
        return stamp;
    }
    bool Covers(unsigned x, unsigned y) const {
        return x >= left && x < left + width && y >= top && y < top + height;
    }
};

PictureOutcome OutcomeOf(const PictureBytes& file, const Stamp& stamp, PictureBytes& result,
                         const PictureControl& control = {}) {
    MemorySource source(file);
    MemoryTarget target;
    const auto outcome = StampPicture(source, target, stamp, control);
    result = target.bytes;
    return outcome;
}

PictureBytes Stamped(const PictureBytes& file, const Stamp& stamp) {
    PictureBytes result;
    EXPECT_EQ(OutcomeOf(file, stamp, result), PictureOutcome::Written);
    return result;
}

unsigned Grey(const Colour& colour) {
    return static_cast<unsigned>(0.299 * colour[0] + 0.587 * colour[1] + 0.114 * colour[2] + 0.5);
}

// What the rectangle's colour is in the channels of a picture without ink.
unsigned Expected(const Raster& raster, unsigned channel, const Colour& colour = kRed) {
    return raster.channels <= 2 ? Grey(colour) : colour[channel];
}

unsigned Near(unsigned one, unsigned other) {
    return static_cast<unsigned>(std::abs(static_cast<int>(one) - static_cast<int>(other)));
}

// Compares with the picture as it was; 16-bit samples are compared in their higher bytes.
void ExpectStamped(const Raster& before, const Raster& after, const Rectangle& stamp,
                   unsigned tolerance, unsigned colours) {
    ASSERT_EQ(before.width, after.width);
    ASSERT_EQ(before.height, after.height);
    ASSERT_EQ(before.channels, after.channels);
    ASSERT_EQ(before.bits, after.bits);
    const unsigned shift = before.bits - 8;
    unsigned wrong = 0;
    for (unsigned y = 0; y < before.height; ++y)
        for (unsigned x = 0; x < before.width; ++x)
            for (unsigned c = 0; c < colours; ++c) {
                const unsigned wanted =
                    stamp.Covers(x, y) ? Expected(before, c) : before.At(x, y, c) >> shift;
                wrong += Near(after.At(x, y, c) >> shift, wanted) > tolerance;
            }
    EXPECT_EQ(wrong, 0u);
}

TEST(StampPictureTest, CoversExactlyItsPlaceInPng) {
    const Rectangle stamp;
    for (unsigned channels : {1u, 2u, 3u, 4u})
        for (unsigned bits : {8u, 16u}) {
            const auto photo = Photo(120, 60, channels, bits);
            const auto read = ParsePng(Stamped(MakePng(photo), stamp));
            ExpectStamped(photo, read, stamp, 1, channels - (channels % 2 == 0));
            EXPECT_EQ(stamp.asked, (PictureSize{120, 60}));
        }
}

TEST(StampPictureTest, MakesTransparentPixelsVisible) {
    Rectangle stamp;
    stamp.opaque = 128;
    Raster raster{60, 40, 4, 8, PictureBytes(60 * 40 * 4, 0)};
    const auto read = ParsePng(Stamped(MakePng(raster), stamp));
    EXPECT_EQ(read.At(20, 10, 3), 128u);
    EXPECT_EQ(read.At(20, 10, 0), kRed[0]);
    EXPECT_EQ(read.At(0, 0, 3), 0u);
}

TEST(StampPictureTest, LetsThePictureShineThrough) {
    Rectangle stamp;
    stamp.opaque = 64;
    const Raster white{60, 40, 3, 8, PictureBytes(60 * 40 * 3, 255)};
    for (unsigned c = 0; c < 3; ++c) {
        const unsigned wanted = (255 * 191 + kRed[c] * 64 + 127) / 255;
        EXPECT_NEAR(ParsePng(Stamped(MakePng(white), stamp)).At(20, 10, c), wanted, 1);
        EXPECT_NEAR(ParseJpeg(Stamped(MakeJpeg(white, {.across = 1, .down = 1}), stamp))
                        .raster.At(20, 10, c),
                    wanted, 3);
    }
}

// As a BMP file stores blue first.
Raster WithRedFirst(Raster raster) {
    for (std::size_t i = 0; raster.channels > 2 && i < raster.bytes.size(); i += raster.channels)
        std::swap(raster.bytes[i], raster.bytes[i + 2]);
    return raster;
}

TEST(StampPictureTest, CoversItsPlaceInBmpWhateverTheOrderOfItsRows) {
    const Rectangle stamp;
    for (unsigned channels : {1u, 3u, 4u})
        for (bool topDown : {false, true}) {
            const auto photo = Photo(121, 60, channels);
            const BmpMaking making{.topDown = topDown, .alpha = channels == 4};
            const auto file = MakeBmp(photo, making);
            ExpectStamped(WithRedFirst(ParseBmp(file).raster),
                          WithRedFirst(ParseBmp(Stamped(file, stamp)).raster), stamp, 1,
                          std::min(channels, 3u));
        }
}

TEST(StampPictureTest, CoversItsPlaceInWebp) {
    const Rectangle stamp;
    for (unsigned channels : {3u, 4u}) {
        const auto photo = Photo(120, 60, channels);
        const auto file = MakeWebp(photo, {.lossless = true});
        const auto read = ParseWebp(Stamped(file, stamp));
        ExpectStamped(ParseWebp(file).raster, read.raster, stamp, 1, 3);
    }
}

TEST(StampPictureTest, CoversItsPlaceInTiff) {
    const Rectangle stamp;
    for (unsigned channels : {1u, 3u, 4u})
        for (unsigned bits : {8u, 16u})
            for (bool tiled : {false, true}) {
                const auto photo = Photo(120, 60, channels, bits);
                const auto file = MakeTiff(photo, {.tiled = tiled});
                const auto read = ParseTiff(Stamped(file, stamp));
                ExpectStamped(photo, read.raster, stamp, 1, std::min(channels, 3u));
            }
}

// What is shown at a place, for each orientation of a picture whose pixels are stored so.
unsigned Shown(const Raster& stored, int orientation, unsigned x, unsigned y, unsigned channel) {
    const unsigned width = stored.width - 1, height = stored.height - 1;
    const std::array<unsigned, 2> places[] = {
        {x, y}, {width - x, y},  {width - x, height - y}, {x, height - y},
        {y, x}, {y, height - x}, {width - y, height - x}, {width - y, x}};
    const auto& place = places[orientation - 1];
    return stored.At(place[0], place[1], channel);
}

TEST(StampPictureTest, IsUprightInEachOrientation) {
    Rectangle stamp;
    stamp.second = {10, 90, 230};
    const auto photo = Photo(130, 90, 3);
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto file = MakeTiff(photo, {.orientation = orientation});
        const Raster read = ParseTiff(Stamped(file, stamp)).raster;
        const bool turned = orientation > 4;
        EXPECT_EQ(stamp.asked, turned ? (PictureSize{90, 130}) : (PictureSize{130, 90}));
        for (unsigned y = 0; y < 60; ++y)
            for (unsigned x = 0; x < 60; ++x) {
                const unsigned was = Shown(photo, orientation, x, y, 2);
                const unsigned wanted = !stamp.Covers(x, y) ? was : x < 32 ? kRed[2] : 230;
                ASSERT_EQ(Shown(read, orientation, x, y, 2), wanted)
                    << orientation << " at " << x << ", " << y;
            }
    }
}

TEST(StampPictureTest, IsUprightByTheExifDataOfEachForm) {
    const Rectangle stamp; // the data say 6: turned to the right
    const auto photo = Photo(130, 90, 3);
    const std::string exif = ExifOf(130, 90);
    JpegMaking jpeg{.quality = 95, .across = 1, .down = 1};
    jpeg.markers = {{0xE1, exif}};
    const Raster rasters[] = {
        ParseJpeg(Stamped(MakeJpeg(photo, jpeg), stamp)).raster,
        ParsePng(Stamped(MakePng(photo, {.chunks = {{"eXIf", exif.substr(6)}}}), stamp)),
        ParseWebp(Stamped(MakeWebp(photo, {.lossless = true, .exif = exif}), stamp)).raster};
    for (const Raster& raster : rasters) {
        EXPECT_NEAR(Shown(raster, 6, 20, 10, 0), kRed[0], 8);
        EXPECT_NEAR(Shown(raster, 6, 45, 22, 2), kRed[2], 8);
        EXPECT_GT(Near(Shown(raster, 6, 60, 10, 0), kRed[0]) +
                      Near(Shown(raster, 6, 60, 10, 1), kRed[1]),
                  30u);
    }
}

TEST(StampPictureTest, ChangesJpegOnlyAtItsPlace) {
    const Rectangle stamp;
    for (const auto& [across, down] : {std::pair{1, 1}, {2, 1}, {2, 2}, {1, 2}}) {
        JpegMaking making{.quality = 92};
        making.across = across;
        making.down = down;
        const auto file = MakeJpeg(Photo(203, 107, 3), making);
        const auto before = ParseJpeg(file), after = ParseJpeg(Stamped(file, stamp));
        EXPECT_EQ(after.across, across);
        EXPECT_TRUE(std::equal(std::begin(before.table), std::end(before.table), after.table));
        for (unsigned c = 0; c < 3; ++c)
            EXPECT_NEAR(after.raster.At(32, 16, c), kRed[c], 6) << across << "x" << down;
        unsigned furthest = 0;
        for (unsigned y = 0; y < 107; ++y)
            for (unsigned x = 80; x < 203; ++x)
                furthest =
                    std::max(furthest, Near(after.raster.At(x, y, 1), before.raster.At(x, y, 1)));
        EXPECT_LE(furthest, 12u); // rounding of coefficients that were rounded before
    }
}

// Three samples beside two: a sample of the second covers one and a half pixels.
TEST(StampPictureTest, PassesASamplingThatNoCameraWrites) {
    Rectangle stamp;
    stamp.left = 80;
    auto file = MakeJpeg(Photo(120, 60, 3), {.across = 1, .down = 1});
    const std::string text(file.begin(), file.end());
    const std::size_t frame = text.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    const unsigned char factors[] = {0x31, 0x21, 0x21};
    for (std::size_t c = 0; c < 3; ++c) file[frame + 11 + 3 * c] = factors[c];
    PictureBytes result;
    const auto outcome = OutcomeOf(file, stamp, result);
    EXPECT_TRUE(outcome == PictureOutcome::Unsupported || outcome == PictureOutcome::Damaged);
}

TEST(StampPictureTest, CoversGreyAndRgbJpeg) {
    const Rectangle stamp;
    const auto grey = ParseJpeg(Stamped(MakeJpeg(Photo(120, 60, 1)), stamp)).raster;
    EXPECT_NEAR(grey.At(32, 16, 0), Grey(kRed), 6);
    const auto rgb =
        ParseJpeg(
            Stamped(MakeJpeg(Photo(120, 60, 3), {.across = 1, .down = 1, .adobe = true}), stamp))
            .raster;
    for (unsigned c = 0; c < 3; ++c) EXPECT_NEAR(rgb.At(32, 16, c), kRed[c], 8);
}

// Ink is stored inverted by every program that writes such files.
TEST(StampPictureTest, CoversCmykJpegWithInk) {
    const Rectangle stamp;
    for (bool ycck : {false, true}) {
        const auto read = ParseJpeg(
            Stamped(MakeJpeg(Photo(120, 60, 4), {.across = 1, .down = 1, .adobe = ycck}), stamp));
        ASSERT_TRUE(read.sawAdobe);
        for (unsigned c = 0; c < 3; ++c) EXPECT_NEAR(read.raster.At(32, 16, c), kRed[c], 8) << ycck;
        EXPECT_NEAR(read.raster.At(32, 16, 3), 255, 8);
    }
}

TEST(StampPictureTest, IsCutOffAtTheEdgeAndLeavesTinyPicturesWhole) {
    Rectangle stamp;
    stamp.left = 110;
    stamp.top = 50;
    const auto photo = Photo(120, 60, 3);
    ExpectStamped(photo, ParsePng(Stamped(MakePng(photo), stamp)), stamp, 1, 3);
    const auto tiny = Photo(3, 2, 3);
    EXPECT_EQ(ParsePng(Stamped(MakePng(tiny), stamp)).bytes, tiny.bytes);
    stamp.width = 0;
    EXPECT_EQ(ParsePng(Stamped(MakePng(photo), stamp)).bytes, photo.bytes);
    EXPECT_EQ(ParseJpeg(Stamped(MakeJpeg(photo), stamp)).raster.width, 120u);
}

TEST(StampPictureTest, IsMadeForTheSizeThatThePictureGets) {
    const Rectangle stamp;
    const auto file = MakeJpeg(Photo(600, 300, 3), {.across = 1, .down = 1});
    MemorySource source(file);
    MemoryTarget target;
    ShrinkPicture(PictureKind::Jpeg, source, target,
                  {.longestEdge = 200, .coarseness = 8, .stamp = &stamp}, {});
    EXPECT_EQ(stamp.asked, (PictureSize{200, 100}));
    const auto read = ParseJpeg(target.bytes).raster;
    EXPECT_EQ(read.width, 200u);
    EXPECT_NEAR(read.At(32, 16, 0), kRed[0], 8);
}

TEST(StampPictureTest, PassesAnimationsAndWhatIsNoPicture) {
    const Rectangle stamp;
    PictureBytes result;
    const auto animated = MakeWebp(Photo(60, 40, 3), {.frames = 2});
    EXPECT_EQ(OutcomeOf(animated, stamp, result), PictureOutcome::Unchanged);
    EXPECT_EQ(OutcomeOf(MakeTiff(Photo(60, 40, 3), {.pages = 2}), stamp, result),
              PictureOutcome::Unchanged);
    EXPECT_EQ(OutcomeOf({'G', 'I', 'F', '8', '9', 'a'}, stamp, result), PictureOutcome::Unchanged);
    EXPECT_EQ(OutcomeOf({'t', 'e', 'x', 't'}, stamp, result), PictureOutcome::Unsupported);
    EXPECT_TRUE(result.empty());
}

TEST(StampPictureTest, ReportsDamageCancelAndPicturesThatAreTooLarge) {
    const Rectangle stamp;
    PictureBytes result, file = MakeJpeg(Photo(300, 200, 3));
    const std::atomic<bool> cancelled = true;
    EXPECT_EQ(OutcomeOf(file, stamp, result, {.cancelled = &cancelled}), PictureOutcome::Cancelled);
    EXPECT_EQ(OutcomeOf(file, stamp, result, {.limits = {.pixels = 1000}}),
              PictureOutcome::TooLarge);
    file.resize(file.size() / 2);
    EXPECT_EQ(OutcomeOf(file, stamp, result), PictureOutcome::Damaged);
}

} // namespace
