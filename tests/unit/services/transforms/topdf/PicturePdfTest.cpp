// Pictures without loss in PDFs: PNG, WebP, BMP and photos.
#include "services/transforms/topdf/PicturePdf.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

std::string SamplesOf(const Raster& raster, unsigned first, unsigned count) {
    const PictureBytes bytes = Channels(raster, first, count);
    return raster.bits == 16 ? HighByteFirst(bytes) : TextOf(bytes);
}

TEST(PicturePdf, HasThePixelsOfAPngInEachDepth) {
    for (const unsigned bits : {8u, 16u}) {
        for (unsigned channels = 1; channels <= 4; ++channels) {
            for (const bool isInterlaced : {false, true}) {
                const Raster raster = Photo(61, 43, channels, bits);
                const auto page = MakePdf(MakePng(raster, {.interlaced = isInterlaced})).Page();
                const unsigned colours = channels < 3 ? 1 : 3;
                EXPECT_EQ(page.samples, SamplesOf(raster, 0, colours)) << bits << " " << channels;
                EXPECT_EQ(page.transparency, channels % 2 ? "" : SamplesOf(raster, colours, 1));
                EXPECT_TRUE(Has(page.dictionary, "/BitsPerComponent " + std::to_string(bits)));
                EXPECT_TRUE(Has(page.dictionary, colours == 1 ? "/DeviceGray" : "/DeviceRGB"));
            }
        }
    }
}

TEST(PicturePdf, KeepsPalettesOfAPng) {
    Raster indices{40, 30, 1, 8, PictureBytes(40 * 30)};
    for (std::size_t i = 0; i < indices.bytes.size(); ++i)
        indices.bytes[i] = static_cast<std::uint8_t>(i % 3);
    const auto page = MakePdf(MakePalettePng(indices, {0xFF0000, 0x00FF00, 0x0000FF})).Page();
    EXPECT_EQ(page.samples, TextOf(indices.bytes));
    EXPECT_TRUE(Has(page.dictionary, "/Indexed /DeviceRGB 2"));
}

TEST(PicturePdf, HasNoTransparencyWhereAllIsOpaque) {
    const auto page = MakePdf(MakePng(Quarters(1, 4))).Page();
    EXPECT_TRUE(page.transparency.empty());
    EXPECT_EQ(page.samples, TextOf(Channels(Quarters(1, 4), 0, 3)));
}

std::string BigNumber(unsigned value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
            static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string ProfileChunk(const std::string& profile) {
    uLongf size = compressBound(static_cast<uLong>(profile.size()));
    std::string coded(size, '\0');
    compress(reinterpret_cast<Bytef*>(coded.data()), &size,
             reinterpret_cast<const Bytef*>(profile.data()), static_cast<uLong>(profile.size()));
    return std::string("a name\0\0", 8) + coded.substr(0, size);
}

TEST(PicturePdf, KeepsProfileOrientationAndResolutionOfAPng) {
    const std::string profile = SoundProfile();
    const auto exif = ExifData({ShortTag(0x112, {6})}, {});
    const Chunks chunks{{"iCCP", ProfileChunk(profile)},
                        {"pHYs", BigNumber(3937) + BigNumber(7874) + '\1'}, // 100 and 200 an inch
                        {"eXIf", TextOf(exif)}};
    const auto page = MakePdf(MakePng(Photo(200, 100, 3), {.chunks = chunks})).Page();
    EXPECT_EQ(page.profile, profile);
    EXPECT_NEAR(page.width, 36, 0.1); // half an inch, turned
    EXPECT_NEAR(page.height, 144, 0.1);
}

TEST(PicturePdf, LeavesOutADamagedProfileOfAPng) {
    for (const std::string& chunk :
         {ProfileChunk(SoundProfile().substr(0, 500)), ProfileChunk(SoundProfile()).substr(0, 60),
          std::string("no end"), std::string("a\0", 2)}) {
        const auto page = MakePdf(MakePng(Photo(20, 10, 3), {.chunks = {{"iCCP", chunk}}})).Page();
        EXPECT_TRUE(Has(page.dictionary, "/DeviceRGB"));
    }
}

TEST(PicturePdf, HasThePixelsOfAWebp) {
    const Raster raster = Photo(61, 43, 4);
    const auto page = MakePdf(MakeWebp(Photo(61, 43, 3), {.lossless = true})).Page();
    EXPECT_EQ(page.samples, TextOf(Photo(61, 43, 3).bytes));
    const auto clear = MakePdf(MakeWebp(raster, {.lossless = true})).Page();
    EXPECT_EQ(clear.transparency, TextOf(Channels(raster, 3, 1)));
}

TEST(PicturePdf, HasThePixelsOfABmpFromTheTopDown) {
    Raster stored = Quarters(); // the maker's order is blue, green, red
    for (std::size_t i = 0; i < stored.bytes.size(); i += 3)
        std::swap(stored.bytes[i], stored.bytes[i + 2]);
    for (const bool isTopDown : {false, true})
        EXPECT_EQ(MakePdf(MakeBmp(stored, {.topDown = isTopDown})).Page().samples,
                  TextOf(Quarters().bytes));
}

TEST(PicturePdf, ShowsPhotosUpright) {
    for (const wchar_t* name : {L"plain.heic", L"turn6.heic", L"stored1.jxr", L"alpha.heic"}) {
        const auto page = MakePdf(PhotoSample(name)).Page();
        Raster raster{kPhotoWidth, kPhotoHeight, 3, 8, {}};
        raster.bytes.assign(page.samples.begin(), page.samples.end());
        ASSERT_EQ(raster.bytes.size(), std::size_t{3} * kPhotoWidth * kPhotoHeight);
        ExpectQuarters(raster);
        EXPECT_EQ(page.transparency.empty(), std::wstring(name) != L"alpha.heic");
    }
    const auto exif = ExifData({ShortTag(0x112, {6})}, {});
    const auto turned = MakePdf(MakeWebp(Quarters(6), {.exif = TextOf(exif)})).Page();
    EXPECT_TRUE(Has(turned.dictionary, "/Width 64")); // the page turns it
    EXPECT_EQ(turned.matrix[0], 0);
    EXPECT_GT(turned.width, turned.height);
}

TEST(PicturePdf, PassesAnimationsAndOtherFiles) {
    const auto photo = Photo(40, 30, 3);
    for (const auto& file : {MakeWebp(photo, {.frames = 2}), PhotoSample(L"moving.heic"),
                             MakePng(photo, {.chunks = {{"acTL", BigNumber(2) + BigNumber(0)}}})}) {
        const auto made = MakePdf(file);
        EXPECT_EQ(made.outcome, PictureOutcome::Unchanged);
        EXPECT_TRUE(made.file.empty());
    }
    for (const std::string text : {"", "a text", "%PDF-1.4", "PK\3\4"}) {
        const auto made = MakePdf({text.begin(), text.end()});
        EXPECT_EQ(made.outcome, PictureOutcome::Unsupported);
        EXPECT_TRUE(made.file.empty());
    }
}

TEST(PicturePdf, IsTheSameForEqualFiles) {
    const auto file = MakePng(Photo(61, 43, 4));
    EXPECT_EQ(MakePdf(file).file, MakePdf(file).file);
    EXPECT_NE(MakePdf(file).file, MakePdf(MakePng(Photo(61, 43, 4, 8, 2))).file);
}

} // namespace
