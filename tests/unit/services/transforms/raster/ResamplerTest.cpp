// The filter: what is even stays even, detail that can't be shown disappears, and both kinds of
// numbers agree.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "services/transforms/raster/Resampler.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace {

using namespace transforms;

std::vector<std::uint8_t> Shrunk(const std::vector<std::uint8_t>& from, unsigned width,
                                 unsigned height, unsigned toWidth, unsigned toHeight) {
    const ResampleAxis across(width, toWidth, 1.0 * width / toWidth);
    const ResampleAxis down(height, toHeight, 1.0 * height / toHeight);
    PlaneResampler8 plane(across, down);
    std::vector<std::uint8_t> to;
    for (unsigned y = 0; y < height; ++y) {
        plane.Push(&from[y * width]);
        while (plane.IsReady()) {
            to.resize(to.size() + toWidth);
            plane.Pull(&to[to.size() - toWidth]);
        }
    }
    return to;
}

std::vector<float> ShrunkFloats(const std::vector<std::uint8_t>& from, unsigned width,
                                unsigned height, unsigned toWidth, unsigned toHeight) {
    const ResampleAxis across(width, toWidth, 1.0 * width / toWidth);
    const ResampleAxis down(height, toHeight, 1.0 * height / toHeight);
    PlaneResamplerFloat plane(across, down);
    std::vector<float> to, row(width);
    for (unsigned y = 0; y < height; ++y) {
        std::copy_n(from.begin() + y * width, width, row.begin());
        plane.Push(row.data());
        while (plane.IsReady()) {
            to.resize(to.size() + toWidth);
            plane.Pull(&to[to.size() - toWidth]);
        }
    }
    return to;
}

std::vector<std::uint8_t> Grain(unsigned count) {
    std::vector<std::uint8_t> bytes(count);
    unsigned state = 3;
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

const unsigned Sizes[][4] = {{100, 80, 51, 41}, {7, 5, 7, 5},       {640, 3, 1, 1},
                             {33, 900, 32, 7},  {1, 1, 1, 1},       {50, 50, 49, 50},
                             {5000, 40, 9, 1},  {9, 2000, 3, 2},    {8, 8, 1, 8},
                             {17, 31, 16, 30},  {1000, 1000, 3, 3}, {2, 2, 1, 1}};

TEST(ResamplerTest, LeavesAnEvenPlaneEvenInAnySize) {
    for (const auto& s : Sizes)
        for (unsigned value : {0u, 1u, 128u, 254u, 255u}) {
            const auto to =
                Shrunk(std::vector<std::uint8_t>(s[0] * s[1], static_cast<std::uint8_t>(value)),
                       s[0], s[1], s[2], s[3]);
            EXPECT_EQ(to, std::vector<std::uint8_t>(s[2] * s[3], static_cast<std::uint8_t>(value)))
                << s[0] << "x" << s[1];
        }
}

TEST(ResamplerTest, ChangesNothingInTheSameSize) {
    const auto from = Grain(61 * 43);
    EXPECT_EQ(Shrunk(from, 61, 43, 61, 43), from);
}

TEST(ResamplerTest, ComesToTheSameInWholeNumbersAndInFloatingPoint) {
    for (const auto& s : Sizes) {
        const auto from = Grain(s[0] * s[1]);
        const auto whole = Shrunk(from, s[0], s[1], s[2], s[3]);
        const auto floats = ShrunkFloats(from, s[0], s[1], s[2], s[3]);
        ASSERT_EQ(whole.size(), s[2] * s[3]);
        ASSERT_EQ(floats.size(), s[2] * s[3]);
        for (std::size_t i = 0; i < whole.size(); ++i)
            ASSERT_NEAR(whole[i], std::fmin(std::fmax(floats[i], 0), 255), 1.0)
                << s[0] << "x" << s[1] << " " << i;
    }
}

TEST(ResamplerTest, RemovesDetailThatTheResultCantShow) {
    std::vector<std::uint8_t> stripes(400 * 20);
    for (std::size_t i = 0; i < stripes.size(); ++i) stripes[i] = i % 2 ? 255 : 0;
    const auto to = Shrunk(stripes, 400, 20, 170, 9);
    // Near the edges the filter is cut off, and less good.
    for (std::size_t i = 0; i < to.size(); ++i)
        if (i % 170 > 1 && i % 170 < 168) {
            EXPECT_NEAR(to[i], 127, 6) << i;
        }
}

TEST(ResamplerTest, KeepsThePlaceOfWhatItShows) {
    std::vector<std::uint8_t> half(300 * 4);
    for (std::size_t i = 0; i < half.size(); ++i) half[i] = i % 300 < 150 ? 0 : 255;
    const auto to = Shrunk(half, 300, 4, 100, 2);
    EXPECT_LT(to[48], 20);
    EXPECT_LT(to[49] + 0, 128);
    EXPECT_GT(to[50] + 0, 127);
    EXPECT_GT(to[51], 235);
}

TEST(ShrinkStepTest, KeepsTheProportionsAndNeverEnlarges) {
    EXPECT_EQ(SizeAfter({4000, 3000}, {.longestEdge = 2048}), (PictureSize{2048, 1536}));
    EXPECT_EQ(SizeAfter({3000, 4000}, {.longestEdge = 2048}), (PictureSize{1536, 2048}));
    EXPECT_EQ(SizeAfter({100, 50}, {.longestEdge = 2048}), (PictureSize{100, 50}));
    EXPECT_EQ(SizeAfter({100, 50}, {.longestEdge = 0}), (PictureSize{100, 50}));
    EXPECT_EQ(SizeAfter({60000, 3}, {.longestEdge = 100}), (PictureSize{100, 1}));
    EXPECT_EQ(SizeAfter({1, 1}, {.longestEdge = 1}), (PictureSize{1, 1}));
}

} // namespace
