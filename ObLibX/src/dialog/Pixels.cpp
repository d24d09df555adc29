#include "ObLibX/src/dialog/Pixels.h"

namespace ObLibX {
namespace {

constexpr std::uint32_t kOpaque = 255;

constexpr std::uint32_t Channel(std::uint32_t value, int shift) { return value >> shift & 0xFF; }

Pixel Premultiplied(Pixel pixel) {
    const std::uint32_t alpha = Channel(pixel, 24);
    Pixel result = alpha << 24;
    for (const int shift : {0, 8, 16}) result |= Channel(pixel, shift) * alpha / kOpaque << shift;
    return result;
}

std::uint32_t SteppedAlpha(std::uint32_t alpha) {
    if (alpha < 21) return 0;
    if (alpha <= 192) return 192;
    return alpha <= 224 ? 224 : alpha;
}

// From 0x00BBGGRR to 0x00RRGGBB.
constexpr std::uint32_t Swapped(std::uint32_t color) {
    return Channel(color, 0) << 16 | Channel(color, 8) << 8 | Channel(color, 16);
}

} // namespace

void Premultiply(std::span<Pixel> pixels) {
    for (Pixel& pixel : pixels) pixel = Premultiplied(pixel);
}

void Recolor(std::span<Pixel> pixels, std::uint32_t color) {
    const std::uint32_t channels = Swapped(color);
    for (Pixel& pixel : pixels) pixel = SteppedAlpha(Channel(pixel, 24)) << 24 | channels;
}

void Tint(std::span<Pixel> pixels, std::uint32_t color) {
    const std::uint32_t channels = Swapped(color);
    for (Pixel& pixel : pixels) pixel = Channel(pixel, 24) << 24 | channels;
}

} // namespace ObLibX
