// TIFF files built by hand: in both byte orders and sizes, laid out as the remover lays them out,
// so that a clean file is the one that is built without what was removed.
#pragma once

#include <cstdint>

#include "tests/unit/services/transforms/personal/Samples.h"

namespace samples {

struct TiffKind {
    bool isLittleEndian;
    bool isBig;
    std::size_t Width() const { return isBig ? 8 : 4; }
    Sample Number(std::uint64_t value, std::size_t size) const {
        Sample number;
        for (std::size_t at = 0; at < size; ++at) {
            const std::size_t place = isLittleEndian ? at : size - 1 - at;
            number += static_cast<char>(value >> 8 * place);
        }
        return number;
    }
};

inline constexpr TiffKind kTiffKinds[] = {
    {true, false}, {false, false}, {true, true}, {false, true}};

struct TiffValue {
    unsigned tag;
    unsigned type;
    std::uint64_t count;
    Sample bytes;                                   // of the values
    std::vector<std::vector<TiffValue>> below = {}; // directories that the values are offsets of
    std::vector<Sample> pixels = {}; // strips or tiles that the values are offsets of
};

inline TiffValue TextValue(unsigned tag, const Sample& text) {
    return {tag, 2, text.size() + 1, text + "\0"s};
}
inline TiffValue ShortValue(const TiffKind& kind, unsigned tag, unsigned value) {
    return {tag, 3, 1, kind.Number(value, 2)};
}
inline TiffValue DirectoryValue(unsigned tag, std::vector<std::vector<TiffValue>> below) {
    return {tag, 4, below.size(), "", std::move(below)};
}

// The pixels' offsets and sizes.
inline TiffValue PixelOffsets(const TiffKind& kind, std::vector<Sample> pixels,
                              unsigned tag = 273) {
    const unsigned type = kind.isBig ? 16 : 4;
    return {tag, type, pixels.size(), "", {}, std::move(pixels)};
}
inline TiffValue PixelSizes(const TiffKind& kind, const std::vector<Sample>& pixels,
                            unsigned tag = 279) {
    TiffValue value = {tag, 4, pixels.size(), ""};
    for (const Sample& part : pixels) value.bytes += kind.Number(part.size(), 4);
    return value;
}

using TiffSamplePage = std::vector<TiffValue>; // ascending tags

class TiffBuilder {
public:
    explicit TiffBuilder(const TiffKind& kind) : kind_(kind) {}

    Sample Build(const std::vector<TiffSamplePage>& pages) {
        Sample head = kind_.isLittleEndian ? "II" : "MM";
        head += kind_.Number(kind_.isBig ? 43 : 42, 2);
        if (kind_.isBig) head += kind_.Number(8, 2) + kind_.Number(0, 2);
        std::size_t place = head.size() + kind_.Width();
        head += kind_.Number(place, kind_.Width());
        dataAt_ = place;
        for (const TiffSamplePage& page : pages) dataAt_ += SizeOf(page) + SizeOfLists(page);
        Sample directories;
        for (std::size_t at = 0; at < pages.size(); ++at) {
            place += SizeOf(pages[at]) + SizeOfLists(pages[at]);
            directories += WritePage(pages[at], head.size() + directories.size(),
                                     at + 1 < pages.size() ? place : 0);
        }
        return head + directories + data_;
    }

private:
    std::size_t SizeOf(const TiffSamplePage& page) const {
        return (kind_.isBig ? 8 : 2) + page.size() * (4 + 2 * kind_.Width()) + kind_.Width();
    }
    std::size_t SizeOfLists(const TiffSamplePage& page) const {
        std::size_t size = 0;
        for (const TiffValue& value : page) {
            if (value.pixels.size() > 1) size += value.pixels.size() * kind_.Width();
        }
        return size;
    }

    std::size_t PlaceData(const Sample& bytes) {
        if ((dataAt_ + data_.size()) % 2) data_ += '\0';
        data_ += bytes;
        return dataAt_ + data_.size() - bytes.size();
    }

    Sample Field(const Sample& bytes) {
        if (bytes.size() <= kind_.Width())
            return bytes + Sample(kind_.Width() - bytes.size(), '\0');
        return kind_.Number(PlaceData(bytes), kind_.Width());
    }

    Sample WriteValue(const TiffValue& value, std::size_t listAt) {
        Sample head = kind_.Number(value.tag, 2) + kind_.Number(value.type, 2) +
                      kind_.Number(value.count, kind_.Width());
        if (value.pixels.size() > 1) return head + kind_.Number(listAt, kind_.Width());
        if (value.pixels.size() == 1) {
            return head + kind_.Number(PlaceData(value.pixels[0]), kind_.Width());
        }
        Sample bytes = value.bytes;
        for (const TiffSamplePage& below : value.below) bytes += WriteBelow(below);
        return head + Field(bytes);
    }

    Sample WriteBelow(const TiffSamplePage& page) {
        return kind_.Number(PlaceData(WriteDirectory(page, 0, 0)), 4);
    }

    Sample WriteDirectory(const TiffSamplePage& page, std::size_t listAt, std::size_t next) {
        Sample directory = kind_.Number(page.size(), kind_.isBig ? 8 : 2);
        for (const TiffValue& value : page) directory += WriteValue(value, listAt);
        return directory + kind_.Number(next, kind_.Width());
    }

    Sample WritePage(const TiffSamplePage& page, std::size_t place, std::size_t next) {
        Sample written = WriteDirectory(page, place + SizeOf(page), next);
        for (const TiffValue& value : page) {
            if (value.pixels.size() < 2) continue;
            for (const Sample& part : value.pixels) {
                const std::size_t offset = part.empty() ? 0 : PlaceData(part);
                written += kind_.Number(offset, kind_.Width());
            }
        }
        return written;
    }

    TiffKind kind_;
    std::size_t dataAt_ = 0;
    Sample data_;
};

inline Sample BuildTiff(const TiffKind& kind, const std::vector<TiffSamplePage>& pages) {
    return TiffBuilder(kind).Build(pages);
}

// A page of these values and what decoders need: two strips, an odd number of bytes in the first.
inline TiffSamplePage TiffPageWith(const TiffKind& kind, std::vector<TiffValue> more,
                                   std::vector<Sample> pixels = {"stripped", "strip"}) {
    TiffSamplePage page = {
        ShortValue(kind, 256, 8), ShortValue(kind, 257, 2), ShortValue(kind, 258, 8),
        ShortValue(kind, 259, 1), ShortValue(kind, 262, 1), PixelOffsets(kind, pixels),
        ShortValue(kind, 277, 1), ShortValue(kind, 278, 1), PixelSizes(kind, pixels)};
    for (TiffValue& value : more) page.push_back(std::move(value));
    std::ranges::stable_sort(page, {}, &TiffValue::tag);
    return page;
}

} // namespace samples
