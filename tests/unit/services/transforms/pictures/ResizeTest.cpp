// The aims that look at each picture alone.
#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

#include "services/transforms/pictures/Resize.h"
#include "services/transforms/pictures/SizeSearch.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace obtest;
using namespace transforms;

struct Result {
    PictureOutcome outcome;
    PictureBytes bytes;
};

Result Resize(const PictureBytes& file, const ResizeRequest& request) {
    MemorySource source(file);
    MemoryTarget target;
    const auto outcome = ResizePicture(source, target, request, {});
    return {outcome, target.bytes};
}

TEST(ResizeTest, MakesTheLongestEdgeAsLongAsAsked) {
    const auto result = Resize(MakeJpeg(Photo(300, 400, 3)), {ResizeAim::LongestEdge, 200});
    EXPECT_EQ(result.outcome, PictureOutcome::Written);
    const auto read = ParseJpeg(result.bytes);
    EXPECT_EQ(read.raster.width, 150u);
    EXPECT_EQ(read.raster.height, 200u);
}

TEST(ResizeTest, ShrinksByPercentOfBothSides) {
    const auto read =
        ParseJpeg(Resize(MakeJpeg(Photo(400, 300, 3)), {ResizeAim::Percent, 25}).bytes);
    EXPECT_EQ(read.raster.width, 100u);
    EXPECT_EQ(read.raster.height, 75u);
}

TEST(ResizeTest, NeverEnlargesAndLeavesWhatMeetsTheAim) {
    const auto file = MakeJpeg(Photo(300, 200, 3));
    for (const auto& request : {ResizeRequest{ResizeAim::LongestEdge, 300},
                                {ResizeAim::LongestEdge, 5000},
                                {ResizeAim::Percent, 100},
                                {ResizeAim::Percent, 300},
                                {ResizeAim::Bytes, file.size()}}) {
        const auto result = Resize(file, request);
        EXPECT_EQ(result.outcome, PictureOutcome::Unchanged);
        EXPECT_TRUE(result.bytes.empty());
    }
}

TEST(ResizeTest, KeepsToTheBytesAskedForAndUsesNearlyAll) {
    const PictureBytes files[] = {MakeJpeg(Photo(500, 400, 3), {.quality = 96}),
                                  MakePng(Photo(400, 300, 3)), MakeWebp(Photo(400, 300, 3)),
                                  MakeTiff(Photo(400, 300, 3, 16), {.compression = 8}),
                                  MakeBmp(Photo(400, 300, 3))};
    for (const auto& file : files)
        for (unsigned percent : {90u, 60u, 35u}) {
            const std::uint64_t most = file.size() * percent / 100;
            const auto result = Resize(file, {ResizeAim::Bytes, most});
            EXPECT_EQ(result.outcome, PictureOutcome::Written);
            EXPECT_LE(result.bytes.size(), most) << int(file[0]) << " " << percent;
            EXPECT_GE(result.bytes.size(), most * 85 / 100) << int(file[0]) << " " << percent;
        }
}

TEST(ResizeTest, ReportsBytesThatCantBeMet) {
    const auto result = Resize(MakeJpeg(Photo(700, 500, 3)), {ResizeAim::Bytes, 300});
    EXPECT_EQ(result.outcome, PictureOutcome::CannotFit);
    EXPECT_TRUE(result.bytes.empty());
}

void Put(PictureBytes& file, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

// A TIFF without compression, 40 by 30 pixels of up to 2 samples.
struct TiffForm {
    std::uint16_t photometric = 1, bits = 8, samples = 1, planes = 1; // planes: 2 for separate ones
};
PictureBytes PlainTiff(const TiffForm& form) {
    constexpr std::uint32_t kWidth = 40, kHeight = 30, kColourMap = 300, kPixels = 2000;
    const bool areSeparate = form.planes == 2;
    const std::uint32_t bytes =
        kWidth * kHeight * form.bits / 8 * (areSeparate ? 1u : form.samples);
    struct Entry {
        std::uint16_t tag, type;
        std::uint32_t count, value;
    };
    const auto twice = [](std::uint32_t value) { return value << 16 | value; };
    const std::uint32_t strips = areSeparate ? 2 : 1;
    std::vector<Entry> entries{
        {256, 3, 1, kWidth},
        {257, 3, 1, kHeight},
        {258, 3, form.samples, form.samples == 2 ? twice(form.bits) : form.bits},
        {259, 3, 1, 1},
        {262, 3, 1, form.photometric},
        {273, 3, strips, areSeparate ? (kPixels + bytes) << 16 | kPixels : kPixels},
        {277, 3, 1, form.samples},
        {278, 3, 1, kHeight},
        {279, 3, strips, areSeparate ? twice(bytes) : bytes},
        {284, 3, 1, form.planes}};
    if (form.photometric == 3) entries.push_back({320, 3, 3u << form.bits, kColourMap});
    if (form.samples == 2) entries.push_back({338, 3, 1, 2});
    PictureBytes file{'I', 'I', 42, 0, 8, 0, 0, 0};
    Put(file, static_cast<std::uint32_t>(entries.size()), 2);
    for (const Entry& entry : entries) {
        Put(file, entry.tag, 2);
        Put(file, entry.type, 2);
        Put(file, entry.count, 4);
        Put(file, entry.value, 4);
    }
    Put(file, 0, 4); // no further page
    file.resize(kPixels + strips * bytes, 100);
    return file;
}

// A BMP with this header and enough bytes for its picture.
PictureBytes BmpOf(unsigned channels, std::uint8_t bits, std::uint8_t compression) {
    constexpr std::size_t kBitsAt = 28, kCompressionAt = 30;
    PictureBytes file = MakeBmp(Photo(40, 30, channels));
    file[kBitsAt] = bits;
    file[kCompressionAt] = compression;
    return file;
}

TEST(ResizeTest, PassesPicturesOfAFormThatIsNotWorkedOn) {
    const ResizeRequest request{ResizeAim::LongestEdge, 20};
    // The makers make pictures that are worked on, but for the form.
    for (const PictureBytes& file :
         {PlainTiff({}), PlainTiff({.samples = 2}), BmpOf(3, 24, 0), BmpOf(1, 8, 0)})
        EXPECT_EQ(Resize(file, request).outcome, PictureOutcome::Written);
    const std::pair<const char*, PictureBytes> rows[] = {
        {"TIFF with a palette", PlainTiff({.photometric = 3})},
        {"TIFF with separate planes", PlainTiff({.samples = 2, .planes = 2})},
        {"TIFF of 4 bits", PlainTiff({.bits = 4})},
        {"TIFF of 32 bits", PlainTiff({.bits = 32})},
        {"BMP with packed pixels", BmpOf(1, 8, 1)},
        {"BMP of 16 bits", BmpOf(3, 16, 0)}};
    for (const auto& [name, file] : rows) {
        const auto result = Resize(file, request);
        EXPECT_EQ(result.outcome, PictureOutcome::Unsupported) << name;
        EXPECT_TRUE(result.bytes.empty()) << name;
    }
}

TEST(ShrinkLadderTest, FallsInSmallSteps) {
    const ShrinkLadder ladder(4000);
    for (std::size_t i = 1; i < ladder.size(); ++i) {
        EXPECT_LT(ladder.Guess(i), ladder.Guess(i - 1));
        EXPECT_GE(ladder[i].coarseness, ladder[i - 1].coarseness);
        const auto edge = ladder[i - 1].longestEdge;
        EXPECT_LE(ladder[i].longestEdge, edge ? edge : 4000);
    }
}

TEST(ShrinkLadderTest, IsSearchedInFewTurnsWhateverThePicturesAreLike) {
    const ShrinkLadder ladder(4000);
    for (double power : {0.5, 1.0, 2.0})
        for (double part : {0.9, 0.5, 0.1, 0.04}) {
            int turns = 0;
            const auto bytesAt = [&](const ShrinkStep& step) {
                ++turns;
                std::size_t number = 0;
                while (!(ladder[number].longestEdge == step.longestEdge &&
                         ladder[number].coarseness == step.coarseness &&
                         ladder[number].sixteenths == step.sixteenths))
                    ++number;
                return static_cast<std::uint64_t>(1e7 * std::pow(ladder.Guess(number), power));
            };
            const auto budget = static_cast<std::uint64_t>(1e7 * part);
            const auto found = FindStep(4000, 10'000'000, budget, bytesAt);
            ASSERT_TRUE(found);
            const auto bytes = bytesAt(*found);
            EXPECT_LE(bytes, budget);
            EXPECT_GE(bytes, budget * 85 / 100);
            EXPECT_LE(turns, 14) << power << " " << part;
        }
}

} // namespace
