// Scaling with a triangle filter, which is wide enough not to leave pixels out, on colours that are
// multiplied by alpha.
#include "services/transforms/watermark/PictureStamp.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace transforms {
namespace {

constexpr std::uint32_t kInCorner = 4, kInCentre = 2; // parts of the shorter side
constexpr std::size_t kChannels = 4;

// The weights of one new sample, from the old sample `first` on. They add up to 1.
struct Weights {
    std::size_t first = 0;
    std::vector<float> of;
};

std::vector<Weights> WeightsOf(std::uint32_t from, std::uint32_t to) {
    const double scale = 1.0 * from / to, reach = std::max(scale, 1.0);
    std::vector<Weights> all(to);
    const auto end = static_cast<std::int64_t>(from) - 1;
    for (std::uint32_t number = 0; number < to; ++number) {
        const double centre = (number + 0.5) * scale - 0.5;
        const auto first = static_cast<std::int64_t>(std::ceil(centre - reach));
        const auto last = static_cast<std::int64_t>(std::floor(centre + reach));
        Weights& weights = all[number];
        weights.first = static_cast<std::size_t>(std::clamp<std::int64_t>(first, 0, end));
        const auto count = static_cast<std::size_t>(std::min(last, end)) - weights.first + 1;
        for (std::size_t i = 0; i < count; ++i) {
            const double away = std::abs(static_cast<double>(weights.first + i) - centre);
            weights.of.push_back(static_cast<float>(std::max(reach - away, 1e-6)));
        }
        const float sum = std::accumulate(weights.of.begin(), weights.of.end(), 0.0f);
        for (float& weight : weights.of) weight /= sum;
    }
    return all;
}

using Floats = std::vector<float>;

// A row of the old picture, multiplied by alpha and scaled across.
Floats RowAcross(const StampPixels& from, std::size_t y, const std::vector<Weights>& across) {
    const std::uint8_t* const row = &from.pixels[y * from.size.width * kChannels];
    Floats scaled(across.size() * kChannels);
    for (std::size_t x = 0; x < across.size(); ++x) {
        for (std::size_t i = 0; i < across[x].of.size(); ++i) {
            const std::uint8_t* const pixel = row + (across[x].first + i) * kChannels;
            const float alpha = pixel[3] / 255.0f * across[x].of[i];
            for (std::size_t c = 0; c < 3; ++c) scaled[x * kChannels + c] += pixel[c] * alpha;
            scaled[x * kChannels + 3] += alpha;
        }
    }
    return scaled;
}

std::uint8_t Rounded(float value) {
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

void AppendRow(const Floats& row, PictureBytes& pixels) {
    for (std::size_t at = 0; at < row.size(); at += kChannels) {
        const float alpha = std::max(row[at + 3], 1e-6f);
        for (std::size_t c = 0; c < 3; ++c) pixels.push_back(Rounded(row[at + c] / alpha));
        pixels.push_back(Rounded(row[at + 3] * 255.0f));
    }
}

PictureBytes Scaled(const StampPixels& from, PictureSize to) {
    const auto across = WeightsOf(from.size.width, to.width);
    const auto down = WeightsOf(from.size.height, to.height);
    std::vector<Floats> rows(from.size.height); // only those of the window are there
    PictureBytes pixels;
    pixels.reserve(std::size_t{to.width} * to.height * kChannels);
    for (const Weights& weights : down) {
        Floats sum(std::size_t{to.width} * kChannels);
        for (std::size_t y = 0; y < weights.first; ++y) Floats().swap(rows[y]);
        for (std::size_t i = 0; i < weights.of.size(); ++i) {
            Floats& row = rows[weights.first + i];
            if (row.empty()) row = RowAcross(from, weights.first + i, across);
            for (std::size_t at = 0; at < sum.size(); ++at) sum[at] += row[at] * weights.of[i];
        }
        AppendRow(sum, pixels);
    }
    return pixels;
}

} // namespace

std::uint32_t StampSide(PictureSize shown, WatermarkPlace place) noexcept {
    const std::uint32_t parts = place == WatermarkPlace::Centre ? kInCentre : kInCorner;
    return std::max(std::min(shown.width, shown.height) / parts, 1u);
}

PictureStamp::PictureStamp(StampPixels picture, WatermarkLook look)
    : picture_(std::move(picture)), look_(look) {}

// Where a text has room, too.
bool PictureStamp::HasRoomIn(PictureSize size) const noexcept {
    return LetterHeight(size, look_.place) != 0;
}

PictureSize PictureStamp::SizeIn(PictureSize shown) const noexcept {
    const PictureSize from = picture_.size;
    const double scale =
        1.0 * StampSide(shown, look_.place) / std::max({from.width, from.height, 1u});
    const auto side = [&](std::uint32_t length) {
        return static_cast<std::uint32_t>(std::max(std::lround(length * scale), 1L));
    };
    return {side(from.width), side(from.height)};
}

std::optional<PlacedStamp> PictureStamp::PlaceFor(PictureSize shown) const {
    PlacedStamp stamp;
    if (!HasRoomIn(shown)) return stamp;
    stamp.size = SizeIn(shown);
    Place(stamp, shown, look_);
    return stamp;
}

PlacedStamp PictureStamp::For(PictureSize shown) const {
    PlacedStamp stamp;
    if (!HasRoomIn(shown)) return stamp;
    stamp.size = SizeIn(shown);
    stamp.pixels = Scaled(picture_, stamp.size);
    Place(stamp, shown, look_);
    return stamp;
}

} // namespace transforms
