#include "services/transforms/documents/ZipReader.h"

#include <algorithm>
#include <set>
#include <utility>

#include "services/transforms/documents/Deflate.h"
#include "services/transforms/documents/ZipFormat.h"

namespace transforms::documents {
namespace {

using namespace personal;
using namespace zip;

std::uint32_t Number16(Bytes bytes, std::size_t at) {
    return std::uint32_t{ByteAt(bytes, at)} | std::uint32_t{ByteAt(bytes, at + 1)} << 8;
}

struct End {
    std::size_t at;
    std::size_t count;
    std::size_t directory;
    std::size_t directorySize;
};

// From the back: the record that is followed by as many bytes as it gives its comment, or by more.
std::optional<End> FindEnd(Bytes file) {
    if (file.size() < kEndSize) return {};
    const std::size_t last = file.size() - kEndSize;
    const std::size_t first = last > kLongestComment ? last - kLongestComment : 0;
    for (std::size_t at = last + 1; at-- > first;) {
        if (LittleEndian32(file, at) != kEndMark) continue;
        const Bytes end = file.subspan(at);
        if (Number16(end, 20) > end.size() - kEndSize) continue;
        return End{at, Number16(end, 10), LittleEndian32(end, 16), LittleEndian32(end, 12)};
    }
    return {};
}

// Bytes of the file that an entry takes, header and all.
struct Extent {
    std::size_t begin;
    std::size_t end;
};

class ZipDirectoryReader {
public:
    ZipDirectoryReader(Bytes file, CleanOutcome& refusal) : file_(file), refusal_(refusal) {}

    std::optional<ZipContents> Read() {
        refusal_ = CleanOutcome::Damaged;
        const auto end = FindEnd(file_);
        if (!end || !IsSound(*end)) return {};
        std::size_t at = end->directory;
        for (std::size_t number = 0; number < end->count; ++number) {
            if (!ReadEntry(at, end->directory + end->directorySize)) return {};
        }
        if (at != end->directory + end->directorySize || Overlap(*end)) return {};
        if (Number16(file_, end->at + 20) != 0) contents_.found.Note(FindingKind::Comment);
        if (end->at + kEndSize + Number16(file_, end->at + 20) != file_.size()) {
            contents_.found.Note(FindingKind::TrailingData);
        }
        return std::move(contents_);
    }

private:
    bool Refuse(CleanOutcome refusal) {
        refusal_ = refusal;
        return false;
    }

    // Files that need the larger fields are above the limits anyway.
    bool IsSound(const End& end) {
        if (end.count == kLarger16 || end.directory == kLarger32) {
            return Refuse(CleanOutcome::NotSupported);
        }
        if (end.count == 0 || end.directory > end.at) return false;
        if (end.count > kMostZipEntries) return Refuse(CleanOutcome::TooLarge);
        return end.directorySize <= end.at - end.directory;
    }

    bool ReadEntry(std::size_t& at, std::size_t end) {
        if (end - at < kDirectorySize || LittleEndian32(file_, at) != kDirectoryMark) return false;
        const Bytes header = file_.subspan(at, end - at);
        const std::size_t name = Number16(header, 28), extra = Number16(header, 30),
                          comment = Number16(header, 32);
        if (name + extra + comment > header.size() - kDirectorySize) return false;
        at += kDirectorySize + name + extra + comment;
        if (Number16(header, 12) != 0 || Number16(header, 14) != kFirstDay) {
            contents_.found.Note(FindingKind::Time);
        }
        if (extra != 0) contents_.found.Note(FindingKind::PrivateData);
        if (comment != 0) contents_.found.Note(FindingKind::Comment);
        return Take(header, TextOf(header.subspan(kDirectorySize, name)));
    }

    bool Take(Bytes header, std::string_view name) {
        const std::uint32_t flags = Number16(header, 8), method = Number16(header, 10);
        if (flags & kEncryptedFlags) return Refuse(CleanOutcome::Encrypted);
        if (method != static_cast<unsigned>(ZipMethod::Stored) &&
            method != static_cast<unsigned>(ZipMethod::Deflated)) {
            return Refuse(CleanOutcome::NotSupported);
        }
        ZipEntry entry{name,
                       (flags & kUtf8Flag) != 0,
                       static_cast<ZipMethod>(method),
                       LittleEndian32(header, 16),
                       LittleEndian32(header, 24),
                       {}};
        if (!IsNameSound(name)) return false;
        const std::uint32_t packed = LittleEndian32(header, 20);
        if (packed == kLarger32 || entry.size == kLarger32) {
            return Refuse(CleanOutcome::NotSupported);
        }
        sum_ += entry.size;
        if (entry.size > kLargestZipEntry || sum_ > kLargestZipSum) {
            return Refuse(CleanOutcome::TooLarge);
        }
        return FindData(entry, LittleEndian32(header, 42), packed) && Add(entry);
    }

    // The names are never used as paths here. Names that would lead another program out of its
    // folder aren't passed on.
    static bool IsNameSound(std::string_view name) {
        if (name.empty() || name.front() == '/' || name.front() == '\\') return false;
        if (name.find('\0') != name.npos || name.find(':') != name.npos) return false;
        return name != ".." && !name.starts_with("../") && !name.starts_with("..\\") &&
               name.find("/../") == name.npos && name.find("\\..\\") == name.npos;
    }

    bool FindData(ZipEntry& entry, std::size_t at, std::size_t packed) {
        if (at > file_.size() || file_.size() - at < kLocalSize) return false;
        const Bytes local = file_.subspan(at);
        if (LittleEndian32(local, 0) != kLocalMark) return false;
        const std::size_t header = kLocalSize + Number16(local, 26) + Number16(local, 28);
        if (header > local.size() || packed > local.size() - header) return false;
        if (TextOf(local.subspan(kLocalSize, Number16(local, 26))) != entry.name) return false;
        entry.packed = local.subspan(header, packed);
        extents_.push_back({at, at + header + packed});
        return true;
    }

    bool Add(const ZipEntry& entry) {
        if (!names_.insert(entry.name).second) return false;
        contents_.entries.push_back(entry);
        return true;
    }

    // Entries that share bytes could make a small file unpack to any size.
    bool Overlap(const End& end) {
        std::ranges::sort(extents_, {}, &Extent::begin);
        std::size_t free = 0;
        for (const Extent& extent : extents_) {
            if (extent.begin < free) return true;
            free = extent.end;
        }
        return free > end.directory;
    }

    Bytes file_;
    CleanOutcome& refusal_;
    ZipContents contents_;
    std::vector<Extent> extents_;
    std::set<std::string_view> names_;
    std::size_t sum_ = 0;
};

} // namespace

bool IsZip(Bytes file) { return StartsWith(file, "PK\x3\x4"); }

std::optional<ZipContents> ReadZip(Bytes file, CleanOutcome& refusal) {
    return ZipDirectoryReader(file, refusal).Read();
}

std::optional<OwnedBytes> Unpack(const ZipEntry& entry) {
    std::optional<OwnedBytes> plain;
    if (entry.method == ZipMethod::Deflated) {
        plain = Inflate(entry.packed, entry.size);
    } else if (entry.packed.size() == entry.size) {
        plain.emplace(entry.packed.begin(), entry.packed.end());
    }
    if (!plain || ChecksumOf(*plain) != entry.checksum) return {};
    return plain;
}

} // namespace transforms::documents
