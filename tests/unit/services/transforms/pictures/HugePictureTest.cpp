// A picture of 200 megapixels passes through a few megabytes of memory.
#include <windows.h>
#include <gtest/gtest.h>

#include <psapi.h>

#include <cstdlib>

#include <jpeglib.h>

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

// Baseline, in colour, written row by row.
PictureBytes HugeJpeg(unsigned width, unsigned height) {
    jpeg_error_mgr errors{};
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    PictureBytes row(3 * width);
    for (unsigned y = 0; y < height; ++y) {
        std::fill(row.begin(), row.end(), static_cast<std::uint8_t>(y * 255ull / height));
        JSAMPROW rows = row.data();
        jpeg_write_scanlines(&jpeg, &rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    PictureBytes file(memory, memory + size);
    free(memory);
    return file;
}

TEST(HugePictureTest, NeedsLittleMemoryWhenItIsABaselineJpeg) {
    const auto file = HugeJpeg(20000, 10000);
    MemorySource source(file);
    MemoryTarget target;
    const std::size_t before = MostMemory();
    ASSERT_EQ(ResizePicture(source, target, {ResizeAim::LongestEdge, 2048}, {}),
              PictureOutcome::Shrunk);
    EXPECT_LT(MostMemory() - before, 64u << 20);
    const auto read = ParseJpeg(target.bytes);
    EXPECT_EQ(read.raster.width, 2048u);
    for (unsigned y : {10u, 500u, 1000u})
        EXPECT_NEAR(read.raster.At(7, y, 0), y * 255 / 1024, 3) << y;
}

} // namespace
