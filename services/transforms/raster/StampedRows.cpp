// The blending itself, in floating point: a stamp is a small part of a picture.
#include "services/transforms/raster/StampedRows.h"

#include <cstring>
#include <limits>
#include <utility>

namespace transforms {
namespace {

// A pixel of the stamp in the channels of the picture, each 0 to 1. Alpha isn't among them.
void InChannels(const std::uint8_t* rgba, const RasterForm& form, float* colours) noexcept {
    const float red = rgba[0] / 255.0f, green = rgba[1] / 255.0f, blue = rgba[2] / 255.0f;
    const float grey = 0.299f * red + 0.587f * green + 0.114f * blue;
    const float values[][4] = {
        {grey}, {red, green, blue}, {blue, green, red}, {red, green, blue, 1.0f}};
    const unsigned count = form.ColourChannels();
    const unsigned model = count == 1 ? 0 : count == 4 ? 3 : form.isBlueFirst ? 2 : 1;
    for (unsigned c = 0; c < count; ++c)
        colours[c] = form.isInk ? 1.0f - values[model][c] : values[model][c];
}

} // namespace

StampedRows::StampedRows(RowWriter& writer, const RasterForm& form, PlacedStamp stamp)
    : writer_(writer), form_(form), stamp_(std::move(stamp)), row_(form.RowBytes()) {}

void StampedRows::Write(const std::uint8_t* row) {
    const std::uint32_t y = next_++;
    if (y < stamp_.top || y - stamp_.top >= stamp_.size.height) return writer_.Write(row);
    std::memcpy(row_.data(), row, row_.size());
    if (form_.bits == 16) {
        Blend<std::uint16_t>(y - stamp_.top);
    } else {
        Blend<std::uint8_t>(y - stamp_.top);
    }
    writer_.Write(row_.data());
}

template <class Sample>
void StampedRows::Blend(std::uint32_t y) {
    constexpr float kMost = std::numeric_limits<Sample>::max();
    const unsigned colours = form_.ColourChannels();
    for (std::uint32_t x = 0; x < stamp_.size.width; ++x) {
        const std::uint8_t* const rgba = stamp_.At(x, y);
        if (rgba[3] == 0) continue;
        float stamp[4];
        InChannels(rgba, form_, stamp);
        std::uint8_t* const place =
            &row_[(std::size_t{stamp_.left} + x) * form_.channels * sizeof(Sample)];
        Sample pixel[5]; // four colours and alpha at most
        std::memcpy(pixel, place, form_.channels * sizeof(Sample));
        const float over = rgba[3] / 255.0f;
        const float under = form_.hasAlpha ? pixel[form_.channels - 1] / kMost : 1.0f;
        const float whole = over + under * (1 - over);
        for (unsigned c = 0; c < colours; ++c) {
            const float was = pixel[c] * (form_.hasAlpha && !form_.isPremultiplied ? under : 1.0f);
            const float sum = stamp[c] * kMost * over + was * (1 - over);
            const float divisor = form_.hasAlpha && !form_.isPremultiplied ? whole : 1.0f;
            pixel[c] = static_cast<Sample>(sum / divisor + 0.5f);
        }
        if (form_.hasAlpha) pixel[form_.channels - 1] = static_cast<Sample>(whole * kMost + 0.5f);
        std::memcpy(place, pixel, form_.channels * sizeof(Sample));
    }
}

void ShrinkAndStampRows(RowReader& reader, RowWriter& writer, PictureSize to,
                        const ShrinkStep& step, std::uint16_t orientation,
                        const PictureControl& control) {
    if (!step.stamp) return ShrinkRows(reader, writer, to, control);
    RasterForm form = reader.Form();
    form.size = to;
    StampedRows stamped(writer, form, StampAsStored(*step.stamp, to, orientation));
    ShrinkRows(reader, stamped, to, control);
}

} // namespace transforms
