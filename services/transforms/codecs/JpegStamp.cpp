// Colours as the JPEG library codes them, averaged where a plane is subsampled.
#include "services/transforms/codecs/JpegStamp.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace transforms {
namespace {

using Colour = std::array<float, 4>; // one value a component, 0 to 255

Colour LumaAndColour(float red, float green, float blue) noexcept {
    return {0.299f * red + 0.587f * green + 0.114f * blue,
            128 - 0.168736f * red - 0.331264f * green + 0.5f * blue,
            128 + 0.5f * red - 0.418688f * green - 0.081312f * blue, 0};
}

// Ink is stored inverted where the marker is, as all programs that write it do; the library takes
// four components with luma as if their colours were light.
Colour InComponents(const std::uint8_t* rgba, const JpegWriter& writer) noexcept {
    const float red = rgba[0], green = rgba[1], blue = rgba[2];
    const bool inverted = writer.write_Adobe_marker != FALSE;
    const float noInk = inverted ? 255.0f : 0.0f;
    switch (writer.jpeg_color_space) {
    case JCS_RGB:
        return {red, green, blue, 0};
    case JCS_CMYK:
        return {std::abs(255 - noInk - red), std::abs(255 - noInk - green),
                std::abs(255 - noInk - blue), noInk};
    case JCS_YCCK: {
        Colour colour =
            LumaAndColour(std::abs(noInk - red), std::abs(noInk - green), std::abs(noInk - blue));
        colour[3] = noInk;
        return colour;
    }
    default:
        return LumaAndColour(red, green, blue);
    }
}

// How many pixels of the picture a sample of the component covers.
struct Cell {
    std::uint32_t across, down;
};

// Throws Unsupported for samples that cover parts of pixels, as 3 beside 2.
Cell CellOf(const JpegWriter& writer, int component) {
    const auto& info = writer.comp_info[component];
    if (writer.max_h_samp_factor % info.h_samp_factor != 0 ||
        writer.max_v_samp_factor % info.v_samp_factor != 0) {
        throw PictureFailure{PictureOutcome::Unsupported};
    }
    return {static_cast<std::uint32_t>(writer.max_h_samp_factor / info.h_samp_factor),
            static_cast<std::uint32_t>(writer.max_v_samp_factor / info.v_samp_factor)};
}

// The end of a stamp's part of a plane, which has so many samples.
std::uint32_t EndOf(std::uint32_t begin, std::uint32_t pixels, std::uint32_t cell,
                    std::uint32_t samples) noexcept {
    return std::min((begin + pixels - 1) / cell + 1, samples);
}

struct Average {
    std::uint8_t value = 0, opaque = 0;
};

// Of the pixels of a cell, those outside the stamp included: they are fully transparent.
Average AverageOf(const PlacedStamp& stamp, const JpegWriter& writer, int component, Cell cell,
                  std::uint32_t column, std::uint32_t row) noexcept {
    float opaque = 0, sum = 0;
    for (std::uint32_t y = row * cell.down; y < (row + 1) * cell.down; ++y) {
        for (std::uint32_t x = column * cell.across; x < (column + 1) * cell.across; ++x) {
            if (x < stamp.left || x - stamp.left >= stamp.size.width || y < stamp.top ||
                y - stamp.top >= stamp.size.height) {
                continue;
            }
            const std::uint8_t* const rgba = stamp.At(x - stamp.left, y - stamp.top);
            opaque += rgba[3];
            sum += rgba[3] * InComponents(rgba, writer)[component];
        }
    }
    if (opaque == 0) return {};
    return {static_cast<std::uint8_t>(std::clamp(sum / opaque + 0.5f, 0.0f, 255.0f)),
            static_cast<std::uint8_t>(opaque / (cell.across * cell.down) + 0.5f)};
}

} // namespace

JpegStamp::JpegStamp(const PlacedStamp& stamp, const JpegWriter& writer)
    : planes_(static_cast<std::size_t>(writer.num_components)) {
    if (stamp.size.width == 0 || stamp.size.height == 0) return;
    for (int c = 0; c < writer.num_components; ++c) {
        Plane& plane = planes_[c];
        const Cell cell = CellOf(writer, c);
        const auto& info = writer.comp_info[c];
        plane.left = std::min(stamp.left / cell.across, info.downsampled_width);
        plane.top = std::min(stamp.top / cell.down, info.downsampled_height);
        plane.width =
            EndOf(stamp.left, stamp.size.width, cell.across, info.downsampled_width) - plane.left;
        plane.height =
            EndOf(stamp.top, stamp.size.height, cell.down, info.downsampled_height) - plane.top;
        plane.values.reserve(std::size_t{plane.width} * plane.height);
        plane.opaque.reserve(std::size_t{plane.width} * plane.height);
        for (std::uint32_t y = plane.top; y < plane.top + plane.height; ++y) {
            for (std::uint32_t x = plane.left; x < plane.left + plane.width; ++x) {
                const Average average = AverageOf(stamp, writer, c, cell, x, y);
                plane.values.push_back(average.value);
                plane.opaque.push_back(average.opaque);
            }
        }
    }
}

void JpegStamp::Blend(int component, std::uint32_t row, std::uint8_t* samples) const noexcept {
    const Plane& plane = planes_[component];
    if (row < plane.top || row - plane.top >= plane.height) return;
    const std::size_t first = std::size_t{row - plane.top} * plane.width;
    for (std::size_t x = 0; x < plane.width; ++x) {
        std::uint8_t& sample = samples[plane.left + x];
        const int opaque = plane.opaque[first + x];
        sample = static_cast<std::uint8_t>(
            (sample * (255 - opaque) + plane.values[first + x] * opaque + 127) / 255);
    }
}

} // namespace transforms
