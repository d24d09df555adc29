// The aims that look at each picture alone.
#include <gtest/gtest.h>

#include <cmath>

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
    EXPECT_EQ(result.outcome, PictureOutcome::Shrunk);
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
            EXPECT_EQ(result.outcome, PictureOutcome::Shrunk);
            EXPECT_LE(result.bytes.size(), most) << int(file[0]) << " " << percent;
            EXPECT_GE(result.bytes.size(), most * 85 / 100) << int(file[0]) << " " << percent;
        }
}

TEST(ResizeTest, ReportsBytesThatCantBeMet) {
    const auto result = Resize(MakeJpeg(Photo(700, 500, 3)), {ResizeAim::Bytes, 300});
    EXPECT_EQ(result.outcome, PictureOutcome::CannotFit);
    EXPECT_TRUE(result.bytes.empty());
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
