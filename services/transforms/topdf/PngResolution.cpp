#include "services/transforms/topdf/PngResolution.h"

#include <span>

#include "services/transforms/raster/Numbers.h"

namespace transforms {

Resolution ResolutionOfPng(const PngChunks& chunks) noexcept {
    constexpr double kInchesAMetre = 1 / 0.0254;
    constexpr std::size_t kSize = 9, kUnitAt = 8;
    const PictureBytes* const chunk = chunks.Find("pHYs");
    if (!chunk || chunk->size() != kSize || (*chunk)[kUnitAt] != 1) return {};
    const std::span<const std::uint8_t> numbers(*chunk);
    return {BigEndian32(numbers) / kInchesAMetre, BigEndian32(numbers.subspan(4)) / kInchesAMetre};
}

} // namespace transforms
