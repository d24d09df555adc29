// What is done to the pixels of a picture before it is drawn.
#pragma once

#include <cstdint>
#include <span>

namespace ObLibX {

// A pixel of 32 bits as bitmaps have it: 0xAARRGGBB.
using Pixel = std::uint32_t;

// Each channel times alpha / 255, as AlphaBlend wants it.
void Premultiply(std::span<Pixel> pixels);

// In high contrast: one colour (0x00BBGGRR) for every pixel, and an alpha in few steps, so that
// pale edges don't blur: below 21 none, to 192 192, to 224 224, above as it is.
void Recolor(std::span<Pixel> pixels, std::uint32_t color);

// One colour (0x00BBGGRR) for every pixel; each keeps its alpha.
void Tint(std::span<Pixel> pixels, std::uint32_t color);

} // namespace ObLibX
