// Pictures of 200 megapixels pass through a few megabytes of memory.
#include <windows.h>

#include <gtest/gtest.h>

#include <psapi.h>

#include <algorithm>

#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

std::size_t MostMemory() {
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return memory.PeakWorkingSetSize;
}

void ExpectLittleMemoryFor(const PictureBytes& file) {
    MemorySource source(file);
    MemoryTarget target;
    const std::size_t before = MostMemory();
    ASSERT_EQ(MakePicturePdf(source, target, {}, {}), PictureOutcome::Shrunk);
    EXPECT_LT(MostMemory() - before, 64u << 20);
}

TEST(HugePicturePdf, NeedsLittleMemoryForABaselineJpeg) {
    PictureBytes row(3 * 20000);
    const auto make = [&](unsigned y) {
        std::fill(row.begin(), row.end(), static_cast<std::uint8_t>(y * 255ull / 10000));
        return row.data();
    };
    ExpectLittleMemoryFor(MakeJpeg({20000, 10000, 3}, make, {.quality = 75}));
}

// Without a compression whose decoded rows would fill the test's memory: a fax, one bit a pixel.
TEST(HugePicturePdf, NeedsLittleMemoryForAScan) {
    const unsigned width = 20000, height = 10000;
    ExpectLittleMemoryFor(PlainTiff(width, height, 1, 1, std::string(width / 8 * height, '\x55'),
                                    {ShortTag(262, {0})}));
}

} // namespace
