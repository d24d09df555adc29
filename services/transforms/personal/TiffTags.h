// The tags of a TIFF that stay: what decoders draw and print from.
#pragma once

#include "services/transforms/personal/TiffDirectory.h"

namespace transforms::personal {

inline constexpr std::uint16_t kTagSubfileType = 254;
inline constexpr std::uint16_t kTagWidth = 256;
inline constexpr std::uint16_t kTagHeight = 257;
inline constexpr std::uint16_t kTagCompression = 259;
inline constexpr std::uint16_t kTagPhotometric = 262;
inline constexpr std::uint16_t kTagStripOffsets = 273;
inline constexpr std::uint16_t kTagStripSizes = 279;
inline constexpr std::uint16_t kTagTileOffsets = 324;
inline constexpr std::uint16_t kTagTileSizes = 325;
inline constexpr std::uint16_t kTagJpegTables = 347;
inline constexpr std::uint16_t kTagJpegOffset = 513;
inline constexpr std::uint16_t kTagJpegSize = 514;
inline constexpr std::uint16_t kTagProfile = 34675;
inline constexpr std::uint16_t kTagRawVersion = 50706;

inline constexpr std::uint64_t kCompressionJpeg = 7;

// What becomes of an entry of a page.
enum class TagUse {
    Kept,
    Removed,
    Broken, // a tag that decoders need, with a type or a number of values that it can't have
};

TagUse UseOf(const TiffEntry& entry);

// Whether the entry's values are whole numbers without sign, and there is one at least.
bool HasWholeNumbers(const TiffEntry& entry);

// Whether the page of this compression and colour model is one that decoders of pictures know,
// rather than a camera's raw data.
bool IsKnownCoding(std::uint64_t compression, std::uint64_t photometric);

} // namespace transforms::personal
