#include "services/transforms/personal/TiffTags.h"

#include <iterator>

namespace transforms::personal {
namespace {

enum class Values {
    Whole,    // numbers without sign
    Rational, // fractions or floating point numbers
    Number,   // any
    Data,     // bytes of another format
};

constexpr std::uint32_t kPerSample = 65535; // as many as samples of a pixel
constexpr std::uint32_t kPerLevel = 65536;  // as many as values of a sample
constexpr std::uint32_t kAny = 0xFFFFFFFF;

struct KeptTag {
    std::uint16_t tag;
    Values values;
    std::uint32_t most; // values
    bool isNeeded;
};

// Ascending. Texts aren't among them.
constexpr KeptTag kKept[] = {
    {kTagSubfileType, Values::Whole, 1, false},
    {255, Values::Whole, 1, false}, // older kind of page
    {kTagWidth, Values::Whole, 1, true},
    {kTagHeight, Values::Whole, 1, true},
    {258, Values::Whole, kPerSample, true}, // bits of each sample
    {kTagCompression, Values::Whole, 1, true},
    {kTagPhotometric, Values::Whole, 1, true},
    {263, Values::Whole, 1, false}, // dithering
    {264, Values::Whole, 1, false},
    {265, Values::Whole, 1, false},
    {266, Values::Whole, 1, true}, // order of bits
    {kTagStripOffsets, Values::Whole, kAny, true},
    {274, Values::Whole, 1, false}, // orientation
    {277, Values::Whole, 1, true},  // samples of a pixel
    {278, Values::Whole, 1, true},  // rows of a strip
    {kTagStripSizes, Values::Whole, kAny, true},
    {280, Values::Whole, kPerSample, false}, // least and greatest value
    {281, Values::Whole, kPerSample, false},
    {282, Values::Rational, 1, false}, // resolution
    {283, Values::Rational, 1, false},
    {284, Values::Whole, 1, true},     // planes
    {286, Values::Rational, 1, false}, // place on the page
    {287, Values::Rational, 1, false},
    {290, Values::Whole, 1, false}, // greys
    {291, Values::Whole, kPerLevel, false},
    {292, Values::Whole, 1, true}, // options of fax coding
    {293, Values::Whole, 1, true},
    {296, Values::Whole, 1, false},             // unit of the resolution
    {297, Values::Whole, 2, false},             // page's number
    {301, Values::Whole, 3 * kPerLevel, false}, // transfer function
    {317, Values::Whole, 1, true},              // predictor
    {318, Values::Rational, 2, false},          // white point
    {319, Values::Rational, 6, false},          // primary colours
    {320, Values::Whole, 3 * kPerLevel, true},  // palette
    {321, Values::Whole, 2, false},             // halftones
    {322, Values::Whole, 1, true},              // a tile's width and height
    {323, Values::Whole, 1, true},
    {kTagTileOffsets, Values::Whole, kAny, true},
    {kTagTileSizes, Values::Whole, kAny, true},
    {326, Values::Whole, 1, false}, // quality of a received fax
    {327, Values::Whole, 1, false},
    {328, Values::Whole, 1, false},
    {332, Values::Whole, 1, true}, // inks
    {334, Values::Whole, 1, true},
    {336, Values::Whole, 2 * kPerSample, false},
    {338, Values::Whole, kPerSample, true},   // what further samples are
    {339, Values::Whole, kPerSample, true},   // how samples are coded
    {340, Values::Number, kPerSample, false}, // least and greatest value
    {341, Values::Number, kPerSample, false},
    {342, Values::Whole, 6, false}, // transfer range
    {346, Values::Whole, 1, true},  // palette in another colour model
    {kTagJpegTables, Values::Data, kAny, true},
    {529, Values::Rational, 3, false}, // luminance and chrominance
    {530, Values::Whole, 2, true},
    {531, Values::Whole, 1, false},
    {532, Values::Rational, 2 * kPerSample, false}, // black and white
    {32997, Values::Whole, 1, true},                // depth of volumes
    {32998, Values::Whole, 1, true},
    {kTagProfile, Values::Data, kAny, false},
    {37439, Values::Rational, 1, false}, // luminance of high dynamic range
    {50674, Values::Whole, 4, true},     // options of one compression
};

constexpr bool AreAscending() {
    for (std::size_t at = 1; at < std::size(kKept); ++at) {
        if (kKept[at - 1].tag >= kKept[at].tag) return false;
    }
    return true;
}

bool AreWhole(TiffType type) {
    return type == TiffType::Byte || type == TiffType::Short || type == TiffType::Long ||
           type == TiffType::Long8;
}

bool IsNumber(TiffType type) { return type != TiffType::Ascii && type != TiffType::Undefined; }

bool AreValues(Values values, TiffType type) {
    switch (values) {
    case Values::Whole:
        return AreWhole(type);
    case Values::Rational:
        return type == TiffType::Rational || type == TiffType::SignedRational ||
               type == TiffType::Float || type == TiffType::Double;
    case Values::Number:
        return IsNumber(type);
    case Values::Data:
        return type == TiffType::Undefined || type == TiffType::Byte;
    }
    return false;
}

bool IsSound(const KeptTag& row, const TiffEntry& entry) {
    return entry.isReadable && AreValues(row.values, entry.type) && entry.count != 0 &&
           entry.count <= row.most;
}

// Of decoders, old and new; what isn't here is raw data, or a coding whose parts are in further
// tags.
constexpr std::uint64_t kCompressions[] = {
    1,     2,     3,     4,     5,     kCompressionJpeg,
    8,     9,     10,    32766, 32771, 32773,
    32809, 32909, 32946, 34661, 34676, 34677,
    34712, 34887, 34925, 50000, 50001, 50002,
};
constexpr std::uint64_t kRawMosaic = 32803;
constexpr std::uint64_t kRawLinear = 34892;

} // namespace

bool HasWholeNumbers(const TiffEntry& entry) {
    return entry.isReadable && AreWhole(entry.type) && entry.count != 0;
}

TagUse UseOf(const TiffEntry& entry) {
    static_assert(AreAscending());
    const auto row = std::ranges::lower_bound(kKept, entry.tag, {}, &KeptTag::tag);
    if (row == std::end(kKept) || row->tag != entry.tag) return TagUse::Removed;
    if (IsSound(*row, entry)) return TagUse::Kept;
    return row->isNeeded ? TagUse::Broken : TagUse::Removed;
}

bool IsKnownCoding(std::uint64_t compression, std::uint64_t photometric) {
    return photometric != kRawMosaic && photometric != kRawLinear &&
           std::ranges::find(kCompressions, compression) != std::end(kCompressions);
}

} // namespace transforms::personal
