// JPEG pictures: what is kept, what is refused, and what comes out.
#include <gtest/gtest.h>

#include "services/transforms/codecs/JpegPicture.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace {

using namespace obtest;
using namespace transforms;

PictureBytes Shrunk(const PictureBytes& file, const ShrinkStep& step,
                    const PictureControl& control = {}) {
    MemorySource source(file);
    MemoryTarget target;
    ShrinkJpeg(source, target, step, control);
    return target.bytes;
}

PictureOutcome OutcomeOf(const PictureBytes& file, const PictureControl& control = {}) {
    try {
        Shrunk(file, {.longestEdge = 40}, control);
    } catch (const PictureFailure& failure) {
        return failure.outcome;
    }
    return PictureOutcome::Written;
}

TEST(JpegPictureTest, ShrinksEachSamplingToWhatAnAverageGives) {
    for (const auto& [across, down] : {std::pair{1, 1}, {2, 1}, {2, 2}, {1, 2}, {4, 1}}) {
        const auto photo = Photo(403, 307, 3, 8, 1, 0);
        JpegMaking making{.quality = 95};
        making.across = across;
        making.down = down;
        const auto read =
            ParseJpeg(Shrunk(MakeJpeg(photo, making), {.longestEdge = 101, .coarseness = 4}));
        EXPECT_EQ(read.across, across);
        EXPECT_EQ(read.down, down);
        EXPECT_LT(Difference(read.raster, Averaged(photo, 101, 77)), 4) << across << "x" << down;
    }
}

TEST(JpegPictureTest, ShrinksByAnyRatio) {
    const auto photo = Photo(640, 480, 3, 8, 2, 0);
    const auto file = MakeJpeg(photo, {.quality = 95});
    for (unsigned edge : {639u, 400u, 200u, 160u, 120u, 80u, 60u, 40u, 20u, 5u, 1u}) {
        const auto read = ParseJpeg(Shrunk(file, {.longestEdge = edge, .coarseness = 2}));
        EXPECT_EQ(read.raster.width, edge);
        if (edge < 20) continue;
        EXPECT_LT(Difference(read.raster, Averaged(photo, edge, read.raster.height)), 5) << edge;
    }
}

TEST(JpegPictureTest, ShrinksGreyRgbAndProgressivePictures) {
    const auto grey = Photo(300, 200, 1, 8, 1, 0), colour = Photo(300, 200, 3, 8, 1, 0);
    const auto one = ParseJpeg(Shrunk(MakeJpeg(grey), {.longestEdge = 100}));
    EXPECT_LT(Difference(one.raster, Averaged(grey, 100, 67)), 4);
    const auto two = ParseJpeg(
        Shrunk(MakeJpeg(colour, {.across = 1, .down = 1, .adobe = true}), {.longestEdge = 100}));
    EXPECT_LT(Difference(two.raster, Averaged(colour, 100, 67)), 4);
    EXPECT_TRUE(two.sawAdobe);
    const auto three =
        ParseJpeg(Shrunk(MakeJpeg(colour, {.progressive = true}), {.longestEdge = 100}));
    EXPECT_LT(Difference(three.raster, Averaged(colour, 100, 67)), 4);
}

TEST(JpegPictureTest, KeepsCmyk) {
    const auto photo = Photo(300, 200, 4, 8, 1, 0);
    for (bool ycck : {false, true}) {
        const auto read = ParseJpeg(
            Shrunk(MakeJpeg(photo, {.across = 1, .down = 1, .adobe = ycck}), {.longestEdge = 100}));
        EXPECT_TRUE(read.isCmyk);
        EXPECT_TRUE(read.sawAdobe);
        EXPECT_LT(Difference(read.raster, Averaged(photo, 100, 67)), 5) << ycck;
    }
}

TEST(JpegPictureTest, KeepsProfileOrientationAndTextsAndCorrectsTheSize) {
    JpegMaking making;
    making.markers = {{0xE1, ExifOf(600, 400)},
                      {0xE2, ProfileMarker("a profile")},
                      {0xED, "Photoshop 3.0"},
                      {0xFE, "a comment"}};
    const auto read = ParseJpeg(Shrunk(MakeJpeg(Photo(600, 400, 3), making), {.longestEdge = 300}));
    auto expected = making.markers;
    expected[0].second = ExifOf(300, 200);
    auto found = read.markers;
    std::erase_if(found, [](const auto& marker) { return marker.first == 0xE0; });
    EXPECT_EQ(found, expected);
}

TEST(JpegPictureTest, LeavesOutTheIndexOfFurtherPictures) {
    JpegMaking making;
    making.markers = {{0xE2, std::string("MPF\0and offsets", 15)}};
    for (const auto& marker :
         ParseJpeg(Shrunk(MakeJpeg(Photo(60, 40, 3), making), {.longestEdge = 30})).markers)
        EXPECT_NE(marker.first, 0xE2);
}

TEST(JpegPictureTest, KeepsTheCoarserOfBothQuantisations) {
    const auto photo = Photo(200, 100, 3);
    const auto coarse = MakeJpeg(photo, {.quality = 30}), fine = MakeJpeg(photo, {.quality = 98});
    EXPECT_EQ(ParseJpeg(Shrunk(coarse, {.longestEdge = 100, .coarseness = 20})).table[0],
              ParseJpeg(coarse).table[0]);
    EXPECT_EQ(ParseJpeg(Shrunk(fine, {.longestEdge = 100, .coarseness = 50})).table[0], 8);
}

TEST(JpegPictureTest, GivesEqualBytesEachTime) {
    const auto file = MakeJpeg(Photo(500, 400, 3));
    const auto first = Shrunk(file, {.longestEdge = 123});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Shrunk(file, {.longestEdge = 123}), first);
}

TEST(JpegPictureTest, MakesASmallerFileOfTheSamePictureWhenCompact) {
    const auto file = MakeJpeg(Photo(500, 400, 3));
    const auto quick = Shrunk(file, {.longestEdge = 300}),
               compact = Shrunk(file, {.longestEdge = 300, .compact = true});
    EXPECT_LT(compact.size(), quick.size());
    EXPECT_EQ(ParseJpeg(quick).raster.bytes, ParseJpeg(compact).raster.bytes);
}

TEST(JpegPictureTest, ReportsDamagedAndTruncatedFiles) {
    const auto file = MakeJpeg(Photo(200, 150, 3));
    EXPECT_EQ(OutcomeOf({}), PictureOutcome::Damaged);
    EXPECT_EQ(OutcomeOf(PictureBytes(1000, 0)), PictureOutcome::Damaged);
    for (std::size_t part : {2, 20, 200, 700, 1500})
        EXPECT_EQ(OutcomeOf(PictureBytes(file.begin(),
                                         file.begin() + static_cast<std::ptrdiff_t>(
                                                            std::min(part, file.size() - 10)))),
                  PictureOutcome::Damaged)
            << part;
}

TEST(JpegPictureTest, SurvivesChangedBytes) {
    const auto file = MakeJpeg(Photo(40, 30, 3));
    for (std::size_t i = 2; i < file.size(); i += 5) {
        auto damaged = file;
        damaged[i] ^= 0xFF;
        PictureControl control;
        control.limits.pixels = 100'000;
        control.limits.memory = 2'000'000;
        OutcomeOf(damaged, control);
    }
}

TEST(JpegPictureTest, RefusesMorePixelsOrMemoryThanTheLimits) {
    const auto file = MakeJpeg(Photo(400, 300, 3));
    PictureControl control;
    control.limits.pixels = 119'999;
    EXPECT_EQ(OutcomeOf(file, control), PictureOutcome::TooLarge);
    control.limits.pixels = 120'000;
    EXPECT_EQ(OutcomeOf(file, control), PictureOutcome::Written);
    control.limits.memory = 100'000;
    EXPECT_EQ(OutcomeOf(MakeJpeg(Photo(400, 300, 3), {.progressive = true}), control),
              PictureOutcome::TooLarge);
}

// Cancels at a given read.
class CancellingSource : public PictureSource {
public:
    CancellingSource(const PictureBytes& file, int reads, std::atomic<bool>& flag)
        : memory_(file), reads_(reads), flag_(flag) {}
    std::uint64_t Size() const noexcept override { return memory_.Size(); }
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override {
        if (--reads_ < 0) flag_ = true;
        return memory_.ReadAt(offset, to, read);
    }

private:
    MemorySource memory_;
    int reads_;
    std::atomic<bool>& flag_;
};

TEST(JpegPictureTest, StopsInTheMiddleWhenItIsCancelled) {
    const auto file = MakeJpeg(Photo(1500, 1200, 3, 8, 1, 60), {.quality = 98});
    ASSERT_GT(file.size(), 300'000u);
    for (int reads : {0, 1, 3}) {
        std::atomic<bool> flag = false;
        PictureControl control;
        control.cancelled = &flag;
        CancellingSource source(file, reads, flag);
        MemoryTarget target;
        try {
            ShrinkJpeg(source, target, {.longestEdge = 1000}, control);
            ADD_FAILURE() << "was not cancelled at read " << reads;
        } catch (const PictureFailure& failure) {
            EXPECT_EQ(failure.outcome, PictureOutcome::Cancelled);
        }
    }
}

// A disk with room for 70,000 bytes.
class FullTarget : public PictureTarget {
public:
    bool WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) override {
        return offset + from.size() < 70'000;
    }
    bool ReadBack(std::uint64_t, std::span<std::uint8_t>, std::size_t&) override { return false; }
};

TEST(JpegPictureTest, ReportsATargetThatCantBeWritten) {
    const auto file = MakeJpeg(Photo(1500, 1200, 3, 8, 1, 60), {.quality = 98});
    MemorySource source(file);
    FullTarget target;
    try {
        ShrinkJpeg(source, target, {.longestEdge = 1400, .coarseness = 2}, {});
        ADD_FAILURE();
    } catch (const PictureFailure& failure) {
        EXPECT_EQ(failure.outcome, PictureOutcome::WriteFailed);
    }
}

} // namespace
