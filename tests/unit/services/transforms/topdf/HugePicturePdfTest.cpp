// Pictures of 200 megapixels pass through a few megabytes of memory; pages of a file have a limit.
#include <windows.h>

#include <gtest/gtest.h>

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

#include "services/transforms/topdf/TiffPages.h"
#include "tests/unit/services/transforms/photos/PhotoSamples.h"
#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

std::size_t Memory() {
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return memory.PagefileUsage;
}

// Looks at the memory while the work goes on: what the sample took when it was made doesn't count.
class WatchedMemory final : public PictureSteps {
public:
    void Step() noexcept override {
        constexpr unsigned kSteps = 16; // between two looks
        if (steps_++ % kSteps != 0) return;
        const std::size_t now = Memory();
        for (std::size_t most = most_; now > most && !most_.compare_exchange_weak(most, now);) {
        }
    }
    std::size_t Most() const { return most_; }

private:
    std::atomic<unsigned> steps_ = 0;
    std::atomic<std::size_t> most_ = 0;
};

void ExpectLittleMemoryFor(const PictureBytes& file, std::size_t most) {
    MemorySource source(file);
    MemoryTarget target;
    WatchedMemory watch;
    PictureControl control;
    control.steps = &watch;
    const std::size_t before = Memory();
    ASSERT_GT(before, 0u);
    ASSERT_EQ(MakePicturePdf(source, target, {}, control), PictureOutcome::Written);
    ASSERT_GE(watch.Most(), before);
    EXPECT_LT(watch.Most() - before, most);
}

TEST(HugePicturePdf, NeedsLittleMemoryForABaselineJpeg) {
    PictureBytes row(3 * 20000);
    const auto make = [&](unsigned y) {
        std::fill(row.begin(), row.end(), static_cast<std::uint8_t>(y * 255ull / 10000));
        return row.data();
    };
    ExpectLittleMemoryFor(MakeJpeg({20000, 10000, 3}, make, {.quality = 75}), 64u << 20);
}

// Without a compression whose decoded rows would fill the test's memory: a fax, one bit a pixel.
TEST(HugePicturePdf, NeedsLittleMemoryForAScan) {
    const unsigned width = 20000, height = 10000;
    const std::string scan(width / 8 * height, '\x55');
    ASSERT_GT(scan.size(), std::size_t{16} << 20);
    ExpectLittleMemoryFor(PlainTiff(width, height, 1, 1, scan, {ShortTag(262, {0})}), 16u << 20);
}

// Pages of 256 MB each once they are decoded, which all share a few bytes of pixels.
PictureBytes ManyLargePages(unsigned count) {
    constexpr unsigned kSide = 16'384, kPixelsAt = 8, kPixels = 128, kFirst = kPixelsAt + kPixels;
    constexpr unsigned kPackBits = 32773, kPalette = 3;
    const std::vector<TiffTag> tags = {LongTag(256, kSide),
                                       LongTag(257, kSide),
                                       ShortTag(258, {8}),
                                       ShortTag(259, {kPackBits}),
                                       ShortTag(262, {kPalette}),
                                       LongTag(273, kPixelsAt),
                                       LongTag(278, kSide),
                                       LongTag(279, kPixels),
                                       ShortTag(320, std::vector<unsigned>(3 * 256))};
    std::string file = "II*" + std::string(1, '\0') + LongTag(0, kFirst).value;
    file.resize(kFirst, '\0');
    for (unsigned page = 1; page <= count; ++page) {
        std::string directory = TiffDirectory(tags, file.size());
        const auto next = static_cast<unsigned>(file.size() + directory.size());
        directory.replace(2 + 12 * tags.size(), 4, LongTag(0, page < count ? next : 0).value);
        file += directory;
    }
    return {file.begin(), file.end()};
}

// Only the pages' directories are read here: the limit is that of their sum.
unsigned PagesWithin(const PictureBytes& file, PictureOutcome& end) {
    MemorySource source(file);
    const PictureControl control;
    unsigned pages = 0;
    end = PictureOutcome::Written;
    try {
        for (TiffPages all(source, control); all.Next();) ++pages;
    } catch (const PictureFailure& failure) {
        end = failure.outcome;
    }
    return pages;
}

TEST(HugePicturePdf, HasEightGigabytesOfPagesAtMost) {
    PictureOutcome end{};
    EXPECT_EQ(PagesWithin(ManyLargePages(32), end), 32u);
    EXPECT_EQ(end, PictureOutcome::Written);
    EXPECT_EQ(PagesWithin(ManyLargePages(33), end), 32u);
    EXPECT_EQ(end, PictureOutcome::TooLarge);
}

} // namespace
