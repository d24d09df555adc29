// JPEG pictures in PDFs: their data are those of the file.
#include <gtest/gtest.h>

#include "services/transforms/documents/AnyFile.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

std::string ExifMarker(const PictureBytes& exif) {
    return std::string("Exif\0\0", 6) + TextOf(exif);
}

TEST(JpegPdf, ContainsTheDataOfTheFileUnchanged) {
    for (const bool isProgressive : {false, true}) {
        const auto file = MakeJpeg(Photo(301, 200, 3), {.progressive = isProgressive});
        const auto page = MakePdf(file).Page();
        EXPECT_EQ(page.coded, TextOf(file));
        EXPECT_TRUE(Has(page.dictionary, "/DCTDecode"));
        EXPECT_TRUE(Has(page.dictionary, "/DeviceRGB"));
        EXPECT_TRUE(Has(page.dictionary, "/Width 301"));
        EXPECT_TRUE(Has(page.dictionary, "/Height 200"));
    }
}

TEST(JpegPdf, NamesGreyAndInks) {
    const auto grey = MakePdf(MakeJpeg(Photo(64, 48, 1), {.across = 1, .down = 1})).Page();
    EXPECT_TRUE(Has(grey.dictionary, "/DeviceGray"));
    const auto cmyk = MakePdf(MakeJpeg(Photo(64, 48, 4), {.across = 1, .down = 1})).Page();
    EXPECT_TRUE(Has(cmyk.dictionary, "/DeviceCMYK"));
    EXPECT_TRUE(Has(cmyk.dictionary, "/Decode [ 1 0 1 0 1 0 1 0 ]")); // stored with Adobe's mark
}

TEST(JpegPdf, NamesHowColoursAreStoredWhereTheDataDoNot) {
    const auto plain = MakePdf(MakeJpeg(Photo(64, 48, 3))).Page();
    EXPECT_TRUE(Has(plain.dictionary, "/ColorTransform 1"));
    const auto marked =
        MakePdf(MakeJpeg(Photo(64, 48, 3), {.across = 1, .down = 1, .adobe = true}));
    EXPECT_FALSE(Has(marked.Page().dictionary, "/ColorTransform"));
}

TEST(JpegPdf, LeavesOutWhatFollowsThePicture) {
    const auto file = MakeJpeg(Photo(64, 48, 3));
    auto longer = file;
    const std::string film = "a film of a phone\xFF\xD8\xFF";
    longer.insert(longer.end(), film.begin(), film.end());
    EXPECT_EQ(MakePdf(longer).Page().coded, TextOf(file));
}

// A PDF contains JPEG data of 8 bits only, and nothing here decodes the others.
TEST(JpegPdf, IsNotMadeOfAPictureOf12Bits) {
    std::string text = TextOf(MakeJpeg(Photo(64, 48, 3)));
    const std::size_t frame = text.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    constexpr std::size_t kPrecision = 4; // after the marker and the length
    ASSERT_EQ(text[frame + kPrecision], 8);
    text[frame + kPrecision] = 12;
    const auto made = MakePdf(PictureBytes(text.begin(), text.end()));
    EXPECT_EQ(made.outcome, PictureOutcome::Unsupported); // the file passes as it is
    EXPECT_TRUE(made.file.empty());
}

TEST(JpegPdf, KeepsASoundProfileAndLeavesOutADamagedOne) {
    const std::string profile = SoundProfile();
    const JpegMaking sound{.markers = {{0xE2, ProfileMarker(profile)}}};
    EXPECT_EQ(MakePdf(MakeJpeg(Photo(64, 48, 3), sound)).Page().profile, profile);
    const JpegMaking damaged{.markers = {{0xE2, ProfileMarker(profile.substr(0, 200))}}};
    const auto without = MakePdf(MakeJpeg(Photo(64, 48, 3), damaged)).Page();
    EXPECT_TRUE(Has(without.dictionary, "/DeviceRGB"));
    JpegMaking ofInks = sound; // a profile for colours of another kind
    ofInks.across = ofInks.down = 1;
    EXPECT_TRUE(Has(MakePdf(MakeJpeg(Photo(64, 48, 1), ofInks)).Page().dictionary, "/DeviceGray"));
}

TEST(JpegPdf, IsShownUprightByItsExifData) {
    for (unsigned orientation = 1; orientation <= 8; ++orientation) {
        const auto exif = ExifData({ShortTag(0x112, {orientation})}, {});
        const auto page =
            MakePdf(MakeJpeg(Photo(80, 40, 3), {.markers = {{0xE1, ExifMarker(exif)}}})).Page();
        EXPECT_EQ(page.width > page.height, orientation < 5) << orientation;
        EXPECT_EQ(page.matrix[0] == 0, orientation >= 5) << orientation;
    }
}

// Of what 3 made, 51 removes the data inside the JPEG; its coded pixels stay.
TEST(JpegPdf, LosesItsExifDataWhenPersonalDataIsRemoved) {
    const auto exif =
        ExifData({TextTag(0x10F, "MakerCo")}, {TextTag(0x9003, "2024:01:02 03:04:05")});
    const auto file = MakeJpeg(Photo(80, 40, 3), {.markers = {{0xE1, ExifMarker(exif)}}});
    const auto made = MakePdf(file);
    ASSERT_TRUE(Has(TextOf(made.file), "MakerCo"));
    const CleanedFile cleaned = CleanFile(std::as_bytes(std::span(made.file)));
    ASSERT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    const std::string text(reinterpret_cast<const char*>(cleaned.bytes.data()),
                           cleaned.bytes.size());
    EXPECT_FALSE(Has(text, "MakerCo"));
    EXPECT_TRUE(Has(text, TextOf(file).substr(file.size() / 2)));
}

} // namespace
