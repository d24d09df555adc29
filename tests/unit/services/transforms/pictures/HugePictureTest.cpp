// A picture of 200 megapixels passes through a few megabytes of memory.
#include <windows.h>
#include <gtest/gtest.h>

#include <psapi.h>

#include <algorithm>

#include "services/transforms/pictures/Resize.h"
#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace {

using namespace obtest;
using namespace transforms;

std::size_t MostMemory() {
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return memory.PeakWorkingSetSize;
}

// Baseline, in colour; each row has one shade.
PictureBytes HugeJpeg(unsigned width, unsigned height) {
    PictureBytes row(3 * width);
    const auto make = [&](unsigned y) {
        std::fill(row.begin(), row.end(), static_cast<std::uint8_t>(y * 255ull / height));
        return row.data();
    };
    return MakeJpeg({width, height, 3}, make, {.quality = 75});
}

TEST(HugePictureTest, NeedsLittleMemoryWhenItIsABaselineJpeg) {
    const auto file = HugeJpeg(20000, 10000);
    MemorySource source(file);
    MemoryTarget target;
    const std::size_t before = MostMemory();
    ASSERT_EQ(ResizePicture(source, target, {ResizeAim::LongestEdge, 2048}, {}),
              PictureOutcome::Written);
    EXPECT_LT(MostMemory() - before, 64u << 20);
    const auto read = ParseJpeg(target.bytes);
    EXPECT_EQ(read.raster.width, 2048u);
    for (unsigned y : {10u, 500u, 1000u})
        EXPECT_NEAR(read.raster.At(7, y, 0), y * 255 / 1024, 3) << y;
}

} // namespace
