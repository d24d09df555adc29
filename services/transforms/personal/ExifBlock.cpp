#include "services/transforms/personal/ExifBlock.h"

#include <utility>

#include "services/transforms/personal/ExifTags.h"
#include "services/transforms/personal/TiffDirectory.h"

namespace transforms::personal {
namespace {

constexpr Orientation kLastOrientation = 8;

// The orientation, if the entry has one of the known values; else upright.
Orientation OrientationOf(const TiffReader& reader, const TiffEntry& entry) {
    if (!entry.isReadable || entry.type != TiffType::Short || entry.count != 1) return kUpright;
    const std::uint64_t value = reader.NumberAt(entry, 0);
    return value > kUpright && value <= kLastOrientation ? static_cast<Orientation>(value)
                                                         : kUpright;
}

// Follows the links that a camera's block has: the first directory, the camera's below it, and the
// thumbnail's. Each is read once, so the work is bounded by the block's size.
class ExifScan {
public:
    explicit ExifScan(const TiffReader& reader) : reader_(reader) {}

    ExifContent Run() {
        const auto first = reader_.ReadDirectory(reader_.FirstDirectory());
        if (!first) return std::move(content_);
        for (const TiffEntry& entry : first->entries) TakeFirst(entry);
        if (first->next != 0) content_.found.Note(FindingKind::Thumbnail);
        return std::move(content_);
    }

private:
    void TakeFirst(const TiffEntry& entry) {
        if (entry.tag == kTagOrientation) {
            content_.orientation = OrientationOf(reader_, entry);
            return;
        }
        if (entry.tag == kTagExif && !hasCamera_) {
            hasCamera_ = true;
            if (NoteCamera(entry)) return;
        }
        content_.found.Note(KindOfTag(entry.tag, FindingKind::CameraSettings));
    }

    // The camera's directory counts by its tags; false when there are none to count.
    bool NoteCamera(const TiffEntry& link) {
        if (!link.isReadable || SizeOf(link.type) < 4 || link.count != 1) return false;
        const auto camera = reader_.ReadDirectory(reader_.NumberAt(link, 0));
        if (!camera || camera->entries.empty()) return false;
        for (const TiffEntry& entry : camera->entries) {
            content_.found.Note(KindOfTag(entry.tag, FindingKind::CameraSettings));
        }
        return true;
    }

    const TiffReader& reader_;
    ExifContent content_;
    bool hasCamera_ = false;
};

} // namespace

ExifContent ReadExif(Bytes block) {
    ExifContent content;
    if (const auto reader = TiffReader::Open(block)) content = ExifScan(*reader).Run();
    // Nothing that could be named, and still a block that isn't needed.
    if (content.found.IsEmpty()) content.found.Note(FindingKind::CameraSettings);
    return content;
}

OwnedBytes MinimalExif(Orientation orientation) {
    OwnedBytes block;
    Append(block, "MM");
    AppendBigEndian16(block, 42);
    AppendBigEndian32(block, 8); // the directory comes next
    AppendBigEndian16(block, 1); // entry
    AppendBigEndian16(block, kTagOrientation);
    AppendBigEndian16(block, static_cast<std::uint16_t>(TiffType::Short));
    AppendBigEndian32(block, 1);
    AppendBigEndian16(block, orientation);
    AppendBigEndian16(block, 0); // the rest of the field
    AppendBigEndian32(block, 0); // no other directory
    return block;
}

bool IsMinimalExif(Bytes block) {
    const auto reader = TiffReader::Open(block);
    if (!reader) return false;
    const Orientation orientation = ExifScan(*reader).Run().orientation;
    return orientation != kUpright && std::ranges::equal(block, MinimalExif(orientation));
}

} // namespace transforms::personal
