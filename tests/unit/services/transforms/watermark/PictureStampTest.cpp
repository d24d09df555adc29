// A picture as a watermark: which files can be one, its colours, its size and its place.
#include "services/transforms/watermark/PictureStamp.h"

#include <gtest/gtest.h>

#include <string>

#include "services/transforms/photos/ColourProfile.h"
#include "services/transforms/watermark/PdfStamp.h"
#include "services/transforms/watermark/StampFile.h"
#include "services/transforms/watermark/TextStamp.h"
#include "tests/support/Allocations.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"
#include "tests/unit/services/transforms/personal/Samples.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace transforms;
using obtest::Raster;

StampPixels ReadFile(const PictureBytes& file, const PictureControl& control = {}) {
    MemorySource source(file);
    return ReadStampFile(source, control);
}

PictureOutcome RefusalOf(const PictureBytes& file) {
    try {
        ReadFile(file);
    } catch (const PictureFailure& failure) {
        return failure.outcome;
    }
    return PictureOutcome::Written;
}

using Colour = std::array<int, 4>;

Colour At(const StampPixels& picture, unsigned x, unsigned y) {
    const std::uint8_t* const pixel =
        &picture.pixels[(std::size_t{y} * picture.size.width + x) * 4];
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

void ExpectNear(const Colour& one, const Colour& other, int most) {
    for (std::size_t c = 0; c < one.size(); ++c) EXPECT_NEAR(one[c], other[c], most) << c;
}

// One colour on the left half, another one on the right.
Raster Halves(std::vector<std::uint8_t> left, std::vector<std::uint8_t> right, unsigned bits = 8) {
    Raster raster{16, 8, static_cast<unsigned>(left.size()), bits, {}};
    for (unsigned y = 0; y < raster.height; ++y) {
        for (unsigned x = 0; x < raster.width; ++x) {
            for (const std::uint8_t sample : x < raster.width / 2 ? left : right) {
                raster.bytes.insert(raster.bytes.end(), bits / 8, sample);
            }
        }
    }
    return raster;
}

void ExpectHalves(const StampPixels& read, const Colour& left, const Colour& right, int most = 0) {
    ASSERT_EQ(read.size, (PictureSize{16, 8}));
    ExpectNear(At(read, 1, 1), left, most);
    ExpectNear(At(read, 14, 6), right, most);
}

TEST(StampFile, IsReadInEachForm) {
    const Raster rgb = Halves({250, 10, 20}, {0, 0, 255});
    const Colour left{250, 10, 20, 255}, right{0, 0, 255, 255};
    ExpectHalves(ReadFile(obtest::MakePng(rgb)), left, right);
    ExpectHalves(ReadFile(obtest::MakePng(rgb, {.interlaced = true})), left, right);
    ExpectHalves(ReadFile(obtest::MakePng(Halves({250, 10, 20}, {0, 0, 255}, 16))), left, right);
    ExpectHalves(ReadFile(obtest::MakeTiff(rgb)), left, right);
    // The maker of BMP files stores what it gets; their order is blue, green, red.
    ExpectHalves(ReadFile(obtest::MakeBmp(Halves({20, 10, 250}, {255, 0, 0}))), left, right);
    ExpectHalves(ReadFile(obtest::MakeWebp(rgb, {.lossless = true})), left, right);
    ExpectHalves(ReadFile(obtest::MakeJpeg(rgb, {.quality = 98, .across = 1, .down = 1})), left,
                 right, 4);
    ExpectHalves(ReadFile(obtest::MakeJpeg(rgb, {.quality = 98, .progressive = true})), left, right,
                 12);
}

TEST(StampFile, OfGreyHasThatColour) {
    const Raster grey = Halves({40}, {200});
    ExpectHalves(ReadFile(obtest::MakePng(grey)), {40, 40, 40, 255}, {200, 200, 200, 255});
    ExpectHalves(ReadFile(obtest::MakeJpeg(grey, {.quality = 98, .across = 1, .down = 1})),
                 {40, 40, 40, 255}, {200, 200, 200, 255}, 3);
}

TEST(StampFile, KeepsWhatIsTransparent) {
    const Raster rgba = Halves({250, 10, 20, 0}, {0, 0, 255, 128});
    ExpectHalves(ReadFile(obtest::MakePng(rgba)), {250, 10, 20, 0}, {0, 0, 255, 128});
    ExpectHalves(ReadFile(obtest::MakePng(Halves({40, 64}, {200, 255}))), {40, 40, 40, 64},
                 {200, 200, 200, 255});
}

TEST(StampFile, OfInksBecomesColours) {
    // The library's own marks say that 0 is all ink.
    const auto file = obtest::MakeJpeg(Halves({255, 0, 0, 255}, {255, 255, 255, 0}),
                                       {.quality = 98, .across = 1, .down = 1, .adobe = true});
    const StampPixels read = ReadFile(file);
    ExpectNear(At(read, 1, 1), {255, 0, 0, 255}, 8);
    ExpectNear(At(read, 14, 6), {0, 0, 0, 255}, 8);
}

TEST(StampFile, OfAnotherProfileGetsTheColoursOfSrgb) {
    const PictureBytes profile = ProfileOfNumbers(9, 13); // of wider colours
    const std::string text(profile.begin(), profile.end());
    const Raster raster = Halves({200, 100, 100}, {128, 128, 128});
    const StampPixels read =
        ReadFile(obtest::MakeWebp(raster, {.lossless = true, .profile = text}));
    EXPECT_GT(At(read, 1, 1)[0], 210);
    EXPECT_LT(At(read, 1, 1)[1], 95);
    ExpectNear(At(read, 14, 6), {128, 128, 128, 255}, 2); // grey stays
    const StampPixels jpeg = ReadFile(obtest::MakeJpeg(
        raster, {.quality = 98, .markers = {{0xE2, obtest::ProfileMarker(text)}}}));
    ExpectNear(At(jpeg, 1, 1), At(read, 1, 1), 6);
}

TEST(StampFile, WithAProfileThatIsDamagedIsReadAsSrgb) {
    const auto file = obtest::MakeWebp(Halves({200, 100, 100}, {128, 128, 128}),
                                       {.lossless = true, .profile = "no profile"});
    ExpectHalves(ReadFile(file), {200, 100, 100, 255}, {128, 128, 128, 255});
}

// Orientation 6: shown turned to the right.
TEST(StampFile, IsUpright) {
    const Raster raster = Halves({250, 10, 20}, {0, 0, 255});
    const StampPixels read = ReadFile(
        obtest::MakeJpeg(raster, {.quality = 98, .markers = {{0xE1, obtest::ExifOf(16, 8)}}}));
    ASSERT_EQ(read.size, (PictureSize{8, 16}));
    ExpectNear(At(read, 4, 1), {250, 10, 20, 255}, 12);
    ExpectNear(At(read, 4, 14), {0, 0, 255, 255}, 12);
}

TEST(StampFile, IsRefusedWhereItCantBeUsed) {
    const auto photo = obtest::Photo(60, 40, 3);
    EXPECT_EQ(RefusalOf({'t', 'e', 'x', 't'}), PictureOutcome::Unsupported);
    EXPECT_EQ(RefusalOf({}), PictureOutcome::Unsupported);
    EXPECT_EQ(RefusalOf(obtest::MakeWebp(photo, {.frames = 3})), PictureOutcome::Unsupported);
    EXPECT_EQ(RefusalOf(obtest::MakeTiff(photo, {.pages = 2})), PictureOutcome::Unsupported);
    for (PictureBytes file : {obtest::MakeJpeg(photo), obtest::MakePng(photo),
                              obtest::MakeWebp(photo), obtest::MakeBmp(photo)}) {
        file.resize(file.size() / 2);
        EXPECT_EQ(RefusalOf(file), PictureOutcome::Damaged);
    }
    // A header that promises 65,500 times 65,500 pixels.
    auto bomb = obtest::MakeJpeg(photo);
    const std::size_t frame = std::string(bomb.begin(), bomb.end()).find("\xff\xc0");
    for (const std::size_t at : {5, 7}) bomb[frame + at] = 0xff, bomb[frame + at + 1] = 0xdc;
    EXPECT_EQ(RefusalOf(bomb), PictureOutcome::TooLarge);
}

// Although the system or a library could decode it.
TEST(StampFile, IsNoPhotoOfAnotherKind) {
    ASSERT_EQ(obtest::Convert(obtest::PhotoSample(L"stored1.jxr")).outcome,
              PictureOutcome::Written);
    for (const wchar_t* name : {L"stored1.jxr", L"plain.heic", L"plain.avif", L"moving.heic"})
        EXPECT_EQ(RefusalOf(obtest::PhotoSample(name)), PictureOutcome::Unsupported) << name;
}

PlacedStamp Placed(const Raster& raster, PictureSize shown, WatermarkLook look = {}) {
    return PictureStamp(ReadFile(obtest::MakePng(raster)), look).For(shown);
}

TEST(PictureStamp, IsAQuarterOfTheShorterSideInACornerAndAHalfInTheCentre) {
    const Raster wide = Halves({250, 10, 20}, {0, 0, 255}); // 16 by 8
    EXPECT_EQ(Placed(wide, {4000, 3000}).size, (PictureSize{750, 375}));
    EXPECT_EQ(Placed(wide, {3000, 4000}).size, (PictureSize{750, 375}));
    EXPECT_EQ(Placed(wide, {4000, 3000}, {WatermarkPlace::Centre, 50}).size,
              (PictureSize{1500, 750}));
    EXPECT_EQ(Placed(obtest::Photo(400, 800, 3), {1000, 800}).size, (PictureSize{100, 200}));
    EXPECT_EQ(Placed(obtest::Photo(4000, 1, 3), {1000, 800}).size, (PictureSize{200, 1}));
}

TEST(PictureStamp, IsAtItsPlaceAndAsStrongAsItIsToBe) {
    const PlacedStamp stamp =
        Placed(Halves({250, 10, 20}, {0, 0, 255}), {1200, 960}, {WatermarkPlace::TopRight, 40});
    EXPECT_EQ(stamp.size, (PictureSize{240, 120}));
    EXPECT_EQ(stamp.left, 1200u - 240 - 20);
    EXPECT_EQ(stamp.top, 20u);
    EXPECT_EQ(stamp.At(5, 5)[3], 102); // 40 percent
}

TEST(PictureStamp, HasItsColoursAtAnySize) {
    const Raster raster = Halves({250, 10, 20}, {0, 0, 255});
    for (const PictureSize shown : {PictureSize{4000, 3000}, {200, 160}, {40, 30}}) {
        const PlacedStamp stamp = Placed(raster, shown, {WatermarkPlace::BottomLeft, 100});
        ASSERT_EQ(stamp.pixels.size(), std::size_t{4} * stamp.size.width * stamp.size.height);
        const StampPixels pixels{stamp.size, stamp.pixels};
        ExpectNear(At(pixels, 0, 0), {250, 10, 20, 255}, 3);
        ExpectNear(At(pixels, stamp.size.width - 1, stamp.size.height - 1), {0, 0, 255, 255}, 3);
    }
}

// The colour of a pixel that nobody sees doesn't come out.
TEST(PictureStamp, HasNoEdgeOfWhatIsTransparent) {
    const Raster raster = Halves({0, 255, 0, 0}, {250, 10, 20, 255});
    const PlacedStamp stamp = Placed(raster, {400, 320}, {WatermarkPlace::BottomLeft, 100});
    for (std::uint32_t x = 0; x < stamp.size.width; ++x) {
        const std::uint8_t* const pixel = stamp.At(x, 3);
        if (pixel[3] == 0) continue;
        EXPECT_NEAR(pixel[0], 250, 2);
        EXPECT_NEAR(pixel[1], 10, 2);
    }
}

TEST(PictureStamp, AveragesWhatItMakesSmaller) {
    const auto photo = obtest::Photo(800, 800, 3);
    const PlacedStamp stamp = Placed(photo, {400, 400}, {WatermarkPlace::BottomLeft, 100});
    ASSERT_EQ(stamp.size, (PictureSize{100, 100}));
    Raster made{100, 100, 3, 8, {}};
    for (std::size_t at = 0; at < stamp.pixels.size(); at += 4)
        made.bytes.insert(made.bytes.end(), &stamp.pixels[at], &stamp.pixels[at + 3]);
    EXPECT_LT(obtest::Difference(made, obtest::Averaged(photo, 100, 100)), 4);
}

TEST(PictureStamp, HasNoRoomInTinyPictures) {
    const PictureStamp stamp(ReadFile(obtest::MakePng(obtest::Photo(16, 8, 3))), {});
    EXPECT_FALSE(stamp.HasRoomIn({1000, 24}));
    EXPECT_TRUE(stamp.For({1000, 24}).pixels.empty());
    EXPECT_TRUE(stamp.HasRoomIn({25, 25}));
}

// Pages for which stamps that are drawn have pictures of distinct sizes.
std::string PagesOfManySizes(int count) {
    constexpr int kWidths = 20;
    samples::PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    std::string kids;
    for (int page = 0; page < count; ++page) kids += std::to_string(page + 3) + " 0 R ";
    pdf.Add("<</Type /Pages /Kids [" + kids + "] /Count " + std::to_string(count) + ">>");
    for (int page = 0; page < count; ++page) {
        const int width = 600 + 8 * (page % kWidths), height = 800 + 8 * (page / kWidths);
        pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + std::to_string(width) + " " +
                std::to_string(height) + "]>>");
    }
    return pdf.File();
}

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(PictureStamp, IsOnceInAPdfOfManyPageSizesAndTakesLittleMemory) {
    const std::string file = PagesOfManySizes(300);
    const PictureStamp stamp(ReadFile(obtest::MakePng(obtest::Photo(300, 300, 3))),
                             {WatermarkPlace::Centre, 50});
    const obtest::HeapPeak peak;
    const StampedPdf stamped = StampPdf(samples::BytesOf(file), stamp, PictureControl());
    EXPECT_LT(peak.Bytes(), std::size_t{32} << 20);
    ASSERT_EQ(stamped.outcome, CleanOutcome::Cleaned);
    EXPECT_LT(stamped.bytes.size(), std::size_t{3} << 20);
    const std::string all = samples::Unpacked(samples::SampleOf(stamped.bytes));
    EXPECT_EQ(CountOf(all, "/SMask"), 1u);
    EXPECT_EQ(CountOf(all, "/ObStamp1 Do"), 300u);
    // As large as the largest page of 752 by 912 points needs it, at two pixels a point.
    EXPECT_NE(all.find("/Width 752"), std::string::npos);
    // A half of the shorter side of the first page, in its middle.
    EXPECT_NE(all.find("300 0 0 300 150 250 cm"), std::string::npos);
}

TEST(TextStampOnPages, TakesLittleMemoryInAPdfOfManyPageSizes) {
    const std::string file = PagesOfManySizes(60);
    const TextStamp stamp(L"Ann Example", {WatermarkPlace::Centre, 50}, Letters::Black);
    const obtest::HeapPeak peak;
    const StampedPdf stamped = StampPdf(samples::BytesOf(file), stamp, PictureControl());
    EXPECT_LT(peak.Bytes(), std::size_t{32} << 20);
    ASSERT_EQ(stamped.outcome, CleanOutcome::Cleaned);
    EXPECT_LT(stamped.bytes.size(), std::size_t{8} << 20);
}

TEST(PictureStamp, IsOnThePagesOfAPdfWithItsTransparency) {
    const PictureStamp stamp(ReadFile(obtest::MakePng(Halves({250, 10, 20, 0}, {0, 0, 255, 128}))),
                             {WatermarkPlace::Centre, 100});
    const StampedPdf stamped =
        StampPdf(samples::BytesOf(samples::OnePage().File()), stamp, PictureControl());
    ASSERT_EQ(stamped.outcome, CleanOutcome::Cleaned);
    const std::string all = samples::Unpacked(samples::SampleOf(stamped.bytes));
    EXPECT_NE(all.find("/ObStamp1 Do"), std::string::npos);
    EXPECT_NE(all.find("/SMask"), std::string::npos);
    EXPECT_NE(all.find(std::string(20, '\x80')), std::string::npos); // rows of the mask
}

} // namespace
