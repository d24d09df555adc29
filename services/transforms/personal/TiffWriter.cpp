#include "services/transforms/personal/TiffWriter.h"

#include <utility>

#include "services/transforms/personal/TiffTags.h"

namespace transforms::personal {
namespace {

bool IsPixelOffsets(const TiffEntry& entry) {
    return entry.tag == kTagStripOffsets || entry.tag == kTagTileOffsets;
}

class Writer {
public:
    Writer(const TiffReader& reader, const TiffContent& content, ExtentMap& map)
        : reader_(reader), content_(content), map_(map) {}

    std::optional<PartList> Run() {
        std::uint64_t end = reader_.HeaderSize();
        for (const TiffPage& page : content_.pages) {
            places_.push_back(end);
            end += SizeOfDirectory(page) + SizeOfLists(page);
        }
        places_.push_back(0); // the last page's link
        if (map_.Place(end) > Largest()) return std::nullopt;
        WriteDirectories();
        return WriteParts(end);
    }

private:
    std::size_t Width() const { return reader_.OffsetSize(); }
    std::uint64_t Largest() const { return reader_.IsBig() ? ~std::uint64_t{0} : 0xFFFFFFFF; }

    std::uint64_t SizeOfDirectory(const TiffPage& page) const {
        const std::size_t countSize = reader_.IsBig() ? 8 : 2;
        return countSize + page.entries.size() * (4 + 2 * Width()) + Width();
    }

    std::uint64_t SizeOfList(const TiffEntry& entry) const {
        return entry.count > 1 ? entry.count * Width() : 0;
    }

    // The lists of a page's pixels come after its directory.
    std::uint64_t SizeOfLists(const TiffPage& page) const {
        std::uint64_t size = 0;
        for (const TiffEntry& entry : page.entries) {
            if (IsPixelOffsets(entry)) size += SizeOfList(entry);
        }
        return size;
    }

    // The reader has checked that every list of offsets has one of sizes.
    static const TiffEntry& SizesOf(const TiffPage& page, const TiffEntry& offsets) {
        const std::uint16_t tag = offsets.tag == kTagStripOffsets ? kTagStripSizes : kTagTileSizes;
        return *std::ranges::find(page.entries, tag, &TiffEntry::tag);
    }

    void Put(std::uint64_t number, std::size_t size) {
        for (std::size_t at = 0; at < size; ++at) {
            const std::size_t place = reader_.IsLittleEndian() ? at : size - 1 - at;
            AppendByte(out_, static_cast<unsigned>(number >> 8 * place & 0xFF));
        }
    }

    void WriteDirectories() {
        Append(out_, reader_.File().first(reader_.IsBig() ? 8 : 4)); // up to the first link
        Put(places_[0], Width());
        for (std::size_t at = 0; at < content_.pages.size(); ++at) {
            WriteDirectory(content_.pages[at], places_[at], places_[at + 1]);
        }
    }

    void WriteDirectory(const TiffPage& page, std::uint64_t place, std::uint64_t next) {
        std::uint64_t list = place + SizeOfDirectory(page);
        Put(page.entries.size(), reader_.IsBig() ? 8 : 2);
        for (const TiffEntry& entry : page.entries) {
            if (IsPixelOffsets(entry)) {
                WriteLinkToList(entry, SizesOf(page, entry), list);
                list += SizeOfList(entry);
            } else {
                WriteEntry(entry);
            }
        }
        Put(next, Width());
        for (const TiffEntry& entry : page.entries) {
            if (IsPixelOffsets(entry) && entry.count > 1) WriteList(entry, SizesOf(page, entry));
        }
    }

    void WriteHead(const TiffEntry& entry, TiffType type) {
        Put(entry.tag, 2);
        Put(static_cast<std::uint64_t>(type), 2);
        Put(entry.count, Width());
    }

    void WriteEntry(const TiffEntry& entry) {
        WriteHead(entry, entry.type);
        if (!entry.isInField) return Put(map_.NewOffset(entry.value.begin), Width());
        const auto begin = static_cast<std::size_t>(entry.value.begin);
        const auto size = static_cast<std::size_t>(entry.value.size);
        Append(out_, reader_.File().subspan(begin, size));
        out_.resize(out_.size() + Width() - size);
    }

    // Offsets have the file's own width (32 or 64 bits): a new one may not fit into a narrower
    // type.
    void WriteLinkToList(const TiffEntry& entry, const TiffEntry& sizes, std::uint64_t list) {
        WriteHead(entry, reader_.IsBig() ? TiffType::Long8 : TiffType::Long);
        if (entry.count > 1) return Put(list, Width());
        PutPixelOffset(entry, sizes, 0);
    }

    void WriteList(const TiffEntry& entry, const TiffEntry& sizes) {
        for (std::uint64_t at = 0; at < entry.count; ++at) PutPixelOffset(entry, sizes, at);
    }

    // A part without pixels is nowhere.
    void PutPixelOffset(const TiffEntry& offsets, const TiffEntry& sizes, std::uint64_t at) {
        const bool isEmpty = reader_.NumberAt(sizes, at) == 0;
        Put(isEmpty ? 0 : map_.NewOffset(reader_.NumberAt(offsets, at)), Width());
    }

    PartList WriteParts(std::uint64_t end) {
        PartList parts;
        parts.Add(std::move(out_));
        for (const ExtentMap::Part& part : map_.Parts()) {
            if (part.offset != end) parts.Add({std::byte{0}});
            parts.Keep(reader_.File().subspan(static_cast<std::size_t>(part.old.begin),
                                              static_cast<std::size_t>(part.old.size)));
            end = part.offset + part.old.size;
        }
        return parts;
    }

    const TiffReader& reader_;
    const TiffContent& content_;
    ExtentMap& map_;
    std::vector<std::uint64_t> places_; // of the directories
    OwnedBytes out_;
};

} // namespace

std::optional<PartList> WriteTiff(const TiffReader& reader, const TiffContent& content,
                                  ExtentMap& map) {
    return Writer(reader, content, map).Run();
}

} // namespace transforms::personal
