// Pictures of a control: one for each of eight display scales, in up to three states.
#pragma once

#include <cstdint>

namespace ObLibX {

inline constexpr std::int32_t kImageListEnd = 0x7FFFFFFF;
inline constexpr std::int32_t kImageScales = 8;
inline constexpr std::int32_t kMostImages = 24;

// The scale for a screen of so many pixels to the inch: 0 below 120, 7 from 480 on.
std::int32_t ScaleOfDpi(std::int32_t dpi);

// The place of a picture in a set: row * 8 + scale. 24 or above ends the process.
std::int32_t ImageIndex(std::int32_t row, std::int32_t dpi);

// Ids of bitmaps in rows of eight, a row a state.
struct ImageSet {
    // `list`: 8, 16 or 24 ids, then kImageListEnd; null: an empty set. A list of any other length
    // ends the process.
    explicit ImageSet(const std::int32_t* list = nullptr);

    std::int32_t ids[kMostImages + 1]; // ended by kImageListEnd
    std::uint32_t rows = 0;
};

// The picture of a state for a screen; that of state 0 where the set has no such row; 0 where it
// has none at all.
std::int32_t GetImageId(const ImageSet& set, std::int32_t row, std::int32_t dpi);

} // namespace ObLibX
