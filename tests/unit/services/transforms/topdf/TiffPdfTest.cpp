// TIFF pictures in PDFs: each page is one, with its samples as they are stored.
#include <gtest/gtest.h>

#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

TEST(TiffPdf, HasTheSamplesInEachForm) {
    for (const unsigned bits : {8u, 16u}) {
        for (const unsigned channels : {1u, 3u}) {
            for (const bool isTiled : {false, true}) {
                const Raster raster = Photo(61, 43, channels, bits);
                const auto page =
                    MakePdf(MakeTiff(raster,
                                     {.compression = 5, .tiled = isTiled, .bigEndian = isTiled}))
                        .Page();
                EXPECT_EQ(page.samples,
                          bits == 16 ? HighByteFirst(raster.bytes) : TextOf(raster.bytes));
            }
        }
    }
}

TEST(TiffPdf, HasAPageForEachPageInOrder) {
    const auto made = MakePdf(MakeTiff(Photo(61, 43, 3), {.pages = 3}));
    ASSERT_EQ(made.outcome, PictureOutcome::Written);
    const auto pages = made.Pages();
    ASSERT_EQ(pages.size(), 3u);
    for (const auto& page : pages) EXPECT_EQ(page.samples, TextOf(Photo(61, 43, 3).bytes));
}

TEST(TiffPdf, KeepsInksAndTheirTransparency) {
    const Raster raster = Photo(40, 30, 4);
    const auto page =
        MakePdf(PlainTiff(40, 30, 8, 4, TextOf(raster.bytes), {ShortTag(262, {5})})).Page();
    EXPECT_EQ(page.samples, TextOf(raster.bytes));
    EXPECT_TRUE(Has(page.dictionary, "/DeviceCMYK"));
    const auto clear = MakePdf(MakeTiff(raster, {.premultiplied = true})).Page(); // RGB and alpha
    EXPECT_EQ(clear.transparency, TextOf(Channels(raster, 3, 1)));
    EXPECT_TRUE(Has(clear.maskDictionary, "/Matte [ 0 0 0 ]"));
}

TEST(TiffPdf, KeepsBlackAndWhiteAtOneBit) {
    const std::string rows("\x80\x80\x40\x00\xFF\x80", 6);
    for (const unsigned kind : {0u, 1u}) {
        const auto page = MakePdf(PlainTiff(9, 3, 1, 1, rows, {ShortTag(262, {kind})})).Page();
        EXPECT_EQ(page.samples, rows);
        EXPECT_TRUE(Has(page.dictionary, "/BitsPerComponent 1"));
        EXPECT_EQ(Has(page.dictionary, "/Decode [ 1 0 ]"), kind == 0);
    }
}

TEST(TiffPdf, KeepsPalettes) {
    std::vector<unsigned> colours(3 * 16, 0);
    colours[1] = 0xFF00;      // red of index 1
    colours[16 + 2] = 0x8000; // green of index 2
    const auto page =
        MakePdf(PlainTiff(4, 1, 4, 1, "\x12\x10", {ShortTag(262, {3}), ShortTag(320, colours)}))
            .Page();
    EXPECT_EQ(page.samples, "\x12\x10");
    EXPECT_TRUE(Has(page.dictionary, "/Indexed /DeviceRGB 15"));
}

TEST(TiffPdf, NamesLab) {
    const std::string pixel("\x50\x7F\x81", 3);
    const auto shifted = MakePdf(PlainTiff(1, 1, 8, 3, pixel, {ShortTag(262, {9})})).Page();
    EXPECT_EQ(shifted.samples, pixel);
    EXPECT_TRUE(Has(shifted.dictionary, "/Lab"));
    const auto isSigned = MakePdf(PlainTiff(1, 1, 8, 3, pixel, {ShortTag(262, {8})})).Page();
    EXPECT_EQ(isSigned.samples, std::string("\x50\xFF\x01", 3)); // the middle at 128
}

TEST(TiffPdf, IsTurnedAndAsLargeAsTheFileNames) {
    const auto page = MakePdf(PlainTiff(2, 1, 8, 1, "ab",
                                        {ShortTag(262, {1}),
                                         ShortTag(274, {6}),
                                         {282, 5, std::string("\x64\0\0\0\x0A\0\0\0", 8)},
                                         {283, 5, std::string("\x64\0\0\0\x0A\0\0\0", 8)},
                                         ShortTag(296, {3})})) // 10 a centimetre: too few
                          .Page();
    EXPECT_GT(page.height, page.width);
    EXPECT_NEAR(page.height, 841.89, 0.01);
    const auto known = MakePdf(MakeTiff(Photo(72, 36, 3), {.orientation = 6})).Page();
    EXPECT_GT(known.height, known.width);
}

} // namespace
