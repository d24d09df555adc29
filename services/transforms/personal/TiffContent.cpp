#include "services/transforms/personal/TiffContent.h"

#include <set>
#include <utility>

#include "services/transforms/personal/ExifTags.h"
#include "services/transforms/personal/IccProfile.h"
#include "services/transforms/personal/JpegSegments.h"
#include "services/transforms/personal/TiffTags.h"

namespace transforms::personal {
namespace {

// Offsets of coded pixels, and their sizes.
struct PixelTags {
    std::uint16_t offsets;
    std::uint16_t sizes;
};

constexpr PixelTags kPixelTags[] = {
    {kTagStripOffsets, kTagStripSizes},
    {kTagTileOffsets, kTagTileSizes},
};

bool IsPixelOffsets(std::uint16_t tag) { return tag == kTagStripOffsets || tag == kTagTileOffsets; }

const TiffEntry* Find(const std::vector<TiffEntry>& entries, std::uint16_t tag) {
    const auto found = std::ranges::find(entries, tag, &TiffEntry::tag);
    return found == entries.end() ? nullptr : &*found;
}

// A stream of one strip, tile or set of tables: nothing in it but what decoders draw from.
bool IsPlainJpeg(Bytes stream) {
    if (!StartsWith(stream, "\xFF\xD8")) return false;
    JpegReader reader(stream);
    while (const auto segment = reader.Next()) {
        if (segment->marker == jpeg::kEndOfImage) return AreZero(reader.Rest());
        if (!segment->stray.empty() || jpeg::CarriesData(*segment)) return false;
    }
    return false;
}

class ContentReader {
public:
    explicit ContentReader(const TiffReader& reader)
        : reader_(reader), budget_(reader.File().size()), streamBudget_(reader.File().size()) {}

    TiffContent Run() {
        content_.other.push_back({0, reader_.HeaderSize()});
        std::uint64_t at = reader_.FirstDirectory();
        do {
            auto directory = ReadDirectory(at);
            if (!directory) return Fail(CleanOutcome::Damaged);
            SortEntries(directory->entries);
            const CleanOutcome outcome = TakeDirectory(*directory);
            if (outcome != CleanOutcome::NothingFound) return Fail(outcome);
            at = directory->next;
        } while (at != 0);
        return std::move(content_);
    }

private:
    TiffContent Fail(CleanOutcome outcome) {
        content_.outcome = outcome;
        return std::move(content_);
    }

    // Directories and lists of a sound file don't overlap, so together they aren't larger than it.
    bool Spend(std::uint64_t bytes) {
        if (bytes > budget_) return false;
        budget_ -= bytes;
        return true;
    }

    // Each directory once; nothing as well when it isn't whole.
    std::optional<TiffDirectory> ReadDirectory(std::uint64_t at) {
        if (!visited_.insert(at).second) return std::nullopt;
        auto directory = reader_.ReadDirectory(at);
        if (!directory || !Spend(directory->extent.size)) return std::nullopt;
        content_.other.push_back(directory->extent);
        return directory;
    }

    static void SortEntries(std::vector<TiffEntry>& entries) {
        std::ranges::stable_sort(entries, {}, &TiffEntry::tag);
    }

    std::uint64_t NumberOf(const TiffDirectory& directory, std::uint16_t tag,
                           std::uint64_t otherwise) const {
        const TiffEntry* entry = Find(directory.entries, tag);
        return entry && HasWholeNumbers(*entry) ? reader_.NumberAt(*entry, 0) : otherwise;
    }

    bool IsReduced(const TiffDirectory& directory) const {
        return (NumberOf(directory, kTagSubfileType, 0) & 1) != 0;
    }

    // A picture of reduced size next to the page itself is a thumbnail. One that has further
    // pictures below it is how cameras store raw data, which isn't cleaned here.
    CleanOutcome TakeDirectory(const TiffDirectory& directory) {
        if (IsReduced(directory)) {
            if (Find(directory.entries, kTagSubDirectories)) return CleanOutcome::NotSupported;
            if (!content_.pages.empty()) {
                RemoveThumbnail(directory);
                return CleanOutcome::NothingFound;
            }
        }
        const std::uint64_t compression = NumberOf(directory, kTagCompression, 1);
        const bool isRaw = Find(directory.entries, kTagRawVersion) != nullptr;
        if (isRaw || !IsKnownCoding(compression, NumberOf(directory, kTagPhotometric, 0))) {
            return CleanOutcome::NotSupported;
        }
        return TakePage(directory, compression == kCompressionJpeg);
    }

    CleanOutcome TakePage(const TiffDirectory& directory, bool isJpeg) {
        content_.pages.emplace_back();
        for (const TiffEntry& entry : directory.entries) {
            const CleanOutcome outcome = TakeEntry(entry);
            if (outcome != CleanOutcome::NothingFound) return outcome;
        }
        return TakePixels(isJpeg);
    }

    CleanOutcome TakeEntry(const TiffEntry& entry) {
        std::vector<TiffEntry>& kept = content_.pages.back().entries;
        if (entry.tag == kTagSubDirectories) return TakeSubDirectories(entry);
        const bool isRepeated = !kept.empty() && kept.back().tag == entry.tag;
        const TagUse use = isRepeated ? TagUse::Removed : UseOf(entry);
        if (use == TagUse::Broken) return CleanOutcome::Damaged;
        if (entry.tag == kTagJpegTables && use == TagUse::Kept && !IsPlainJpeg(ValueOf(entry))) {
            return CleanOutcome::NotSupported;
        }
        if (use == TagUse::Removed || IsFalseProfile(entry)) {
            RemoveEntry(entry);
        } else {
            kept.push_back(entry);
            KeepValue(entry);
        }
        return CleanOutcome::NothingFound;
    }

    Bytes ValueOf(const TiffEntry& entry) const { return PartOf(entry.value); }
    Bytes PartOf(const Extent& extent) const {
        return reader_.File().subspan(static_cast<std::size_t>(extent.begin),
                                      static_cast<std::size_t>(extent.size));
    }

    bool IsFalseProfile(const TiffEntry& entry) const {
        return entry.tag == kTagProfile && !BeginsAsProfile(ValueOf(entry));
    }

    // What a field has after a short value is used by nobody.
    void KeepValue(const TiffEntry& entry) {
        if (entry.isInField) {
            const Bytes field = PartOf(entry.field);
            if (!AreZero(field.subspan(static_cast<std::size_t>(entry.value.size)))) {
                content_.found.Note(FindingKind::StrayBytes);
            }
        } else if (IsPixelOffsets(entry.tag)) {
            content_.other.push_back(entry.value); // written anew
        } else {
            content_.kept.push_back(entry.value);
        }
    }

    void RemoveEntry(const TiffEntry& entry) {
        if (!CountLinked(entry))
            content_.found.Note(KindOfTag(entry.tag, FindingKind::PrivateData));
        RemoveValue(entry);
    }

    void RemoveValue(const TiffEntry& entry) {
        if (entry.isReadable && !entry.isInField) content_.other.push_back(entry.value);
    }

    std::optional<TiffDirectory> ReadLinked(const TiffEntry& entry) {
        if (!entry.isReadable || SizeOf(entry.type) < 4 || entry.count != 1) return std::nullopt;
        return ReadDirectory(reader_.NumberAt(entry, 0));
    }

    // The camera's directory counts by its tags. Directories of positions and the like are part of
    // what their tag is about; their bytes are known to be referred to. True when it was counted.
    bool CountLinked(const TiffEntry& entry) {
        if (entry.tag != kTagExif && entry.tag != kTagGps && entry.tag != kTagInterop) return false;
        const auto linked = ReadLinked(entry);
        if (!linked) return false;
        for (const TiffEntry& below : linked->entries) {
            if (entry.tag == kTagExif) CountCameraTag(below);
            RemoveValue(below);
        }
        return entry.tag == kTagExif && !linked->entries.empty();
    }

    void CountCameraTag(const TiffEntry& entry) {
        content_.found.Note(KindOfTag(entry.tag, FindingKind::CameraSettings));
        if (entry.tag != kTagInterop) return;
        if (const auto linked = ReadLinked(entry)) {
            for (const TiffEntry& below : linked->entries) RemoveValue(below);
        }
    }

    // Smaller copies are removed; a full picture below a page is more than is understood here.
    CleanOutcome TakeSubDirectories(const TiffEntry& entry) {
        const bool areOffsets = entry.isReadable && SizeOf(entry.type) >= 4;
        if (!areOffsets || !Spend(entry.value.size)) return CleanOutcome::Damaged;
        for (std::uint64_t at = 0; at < entry.count; ++at) {
            const auto directory = ReadDirectory(reader_.NumberAt(entry, at));
            if (!directory) return CleanOutcome::Damaged;
            if (!IsReduced(*directory)) return CleanOutcome::NotSupported;
            RemoveThumbnail(*directory);
        }
        RemoveValue(entry);
        return CleanOutcome::NothingFound;
    }

    void RemoveThumbnail(const TiffDirectory& directory) {
        content_.found.Note(FindingKind::Thumbnail);
        for (const TiffEntry& entry : directory.entries) RemoveValue(entry);
        for (const PixelTags& tags : kPixelTags) {
            ForEachPixelExtent(directory.entries, tags, [this](const Extent& extent) {
                if (reader_.IsInside(extent)) content_.other.push_back(extent);
                return true;
            });
        }
        const Extent stream = {NumberOf(directory, kTagJpegOffset, 0),
                               NumberOf(directory, kTagJpegSize, 0)};
        if (reader_.IsInside(stream)) content_.other.push_back(stream);
    }

    // False when the lists don't fit each other or when the visitor returns false; true without
    // lists.
    template <typename Visitor>
    bool ForEachPixelExtent(const std::vector<TiffEntry>& entries, const PixelTags& tags,
                            Visitor visit) {
        const TiffEntry* offsets = Find(entries, tags.offsets);
        const TiffEntry* sizes = Find(entries, tags.sizes);
        if (!offsets && !sizes) return true;
        if (!offsets || !sizes || offsets->count != sizes->count) return false;
        if (!HasWholeNumbers(*offsets) || !HasWholeNumbers(*sizes)) return false;
        if (!Spend(offsets->value.size)) return false;
        for (std::uint64_t at = 0; at < offsets->count; ++at) {
            const Extent extent = {reader_.NumberAt(*offsets, at), reader_.NumberAt(*sizes, at)};
            if (extent.size != 0 && !visit(extent)) return false;
        }
        return true;
    }

    // Strips don't share bytes, unless somebody wants them read again and again.
    bool IsPlainStream(const Extent& extent) {
        if (extent.size > streamBudget_) return false;
        streamBudget_ -= extent.size;
        return IsPlainJpeg(PartOf(extent));
    }

    CleanOutcome TakePixels(bool isJpeg) {
        const std::vector<TiffEntry>& entries = content_.pages.back().entries;
        if (!Find(entries, kTagWidth) || !Find(entries, kTagHeight)) return CleanOutcome::Damaged;
        bool hasPixels = false;
        bool arePlain = true;
        for (const PixelTags& tags : kPixelTags) {
            hasPixels |= Find(entries, tags.offsets) != nullptr;
            const bool areSound = ForEachPixelExtent(entries, tags, [&](const Extent& extent) {
                if (!reader_.IsInside(extent)) return false;
                content_.kept.push_back(extent);
                arePlain = arePlain && (!isJpeg || IsPlainStream(extent));
                return true;
            });
            if (!areSound) return CleanOutcome::Damaged;
        }
        if (!hasPixels) return CleanOutcome::Damaged;
        return arePlain ? CleanOutcome::NothingFound : CleanOutcome::NotSupported;
    }

    const TiffReader& reader_;
    std::uint64_t budget_;       // bytes of directories and lists that may still be read
    std::uint64_t streamBudget_; // bytes of coded pixels that may still be read
    std::set<std::uint64_t> visited_;
    TiffContent content_;
};

} // namespace

TiffContent ReadTiffContent(const TiffReader& reader) { return ContentReader(reader).Run(); }

} // namespace transforms::personal
