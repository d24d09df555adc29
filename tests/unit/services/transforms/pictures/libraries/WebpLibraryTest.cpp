// The WebP library as it was built for this system: lossless pictures come back, parts of the
// container are kept, and a damaged file is an error.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <webp/decode.h>
#include <webp/demux.h>
#include <webp/encode.h>
#include <webp/mux.h>

namespace {
using Bytes = std::vector<unsigned char>;
const int Width = 40, Height = 30;

Bytes Noise() {
    Bytes bytes(Width * Height * 4, 0xFF);
    unsigned state = 7;
    for (size_t i = 0; i < bytes.size(); ++i)
        if (i % 4 != 3)
            bytes[i] = static_cast<unsigned char>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

Bytes Lossless(const Bytes& pixels) {
    unsigned char* memory = nullptr;
    const size_t size = WebPEncodeLosslessRGBA(pixels.data(), Width, Height, Width * 4, &memory);
    Bytes file(memory, memory + size);
    WebPFree(memory);
    return file;
}

Bytes Decode(const Bytes& file) {
    Bytes pixels(Width * Height * 4);
    int width = 0, height = 0;
    if (!WebPGetInfo(file.data(), file.size(), &width, &height) || width != Width ||
        height != Height)
        return {};
    return WebPDecodeRGBAInto(file.data(), file.size(), pixels.data(), pixels.size(), Width * 4)
               ? pixels
               : Bytes{};
}

TEST(WebpLibrary, ReadsWhatItWroteWithoutLoss) { EXPECT_EQ(Decode(Lossless(Noise())), Noise()); }

TEST(WebpLibrary, KeepsAProfileInTheContainer) {
    const auto file = Lossless(Noise());
    const std::string profile = "a profile";
    const WebPData image{file.data(), file.size()};
    const WebPData icc{reinterpret_cast<const uint8_t*>(profile.data()), profile.size()};
    WebPMux* mux = WebPMuxCreate(&image, 1);
    ASSERT_EQ(WebPMuxSetChunk(mux, "ICCP", &icc, 1), WEBP_MUX_OK);
    WebPData whole{}, found{};
    ASSERT_EQ(WebPMuxAssemble(mux, &whole), WEBP_MUX_OK);
    WebPMuxDelete(mux);
    WebPMux* again = WebPMuxCreate(&whole, 0);
    ASSERT_EQ(WebPMuxGetChunk(again, "ICCP", &found), WEBP_MUX_OK);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(found.bytes), found.size), profile);
    WebPMuxDelete(again);
    WebPDataClear(&whole);
}

TEST(WebpLibrary, ReportsADamagedFileByAnError) {
    const auto file = Lossless(Noise());
    EXPECT_TRUE(Decode({}).empty());
    EXPECT_TRUE(Decode(Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(file.size() / 2)))
                    .empty());
    for (size_t i = 0; i < file.size(); ++i) {
        auto damaged = file;
        damaged[i] ^= 0xFF;
        Decode(damaged);
    }
}
} // namespace
