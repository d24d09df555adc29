#include "services/transforms/documents/ZipWriter.h"

#include <utility>

#include "services/transforms/documents/Deflate.h"
#include "services/transforms/documents/ZipFormat.h"

namespace transforms::documents {
namespace {

using namespace personal;
using namespace zip;

void Append16(OwnedBytes& to, std::uint32_t value) {
    AppendByte(to, value & 0xFF);
    AppendByte(to, value >> 8 & 0xFF);
}

// What the header before an entry and its row in the directory have in common.
void AppendCommon(OwnedBytes& to, const ZipEntry& entry, std::size_t packed) {
    Append16(to, kVersion);
    Append16(to, entry.isUtf8 ? kUtf8Flag : 0);
    Append16(to, static_cast<std::uint32_t>(entry.method));
    Append16(to, 0); // time
    Append16(to, kFirstDay);
    AppendLittleEndian32(to, entry.checksum);
    AppendLittleEndian32(to, static_cast<std::uint32_t>(packed));
    AppendLittleEndian32(to, static_cast<std::uint32_t>(entry.size));
    Append16(to, static_cast<std::uint32_t>(entry.name.size()));
    Append16(to, 0); // further fields
}

OwnedBytes LocalHeader(const ZipEntry& entry, std::size_t packed) {
    OwnedBytes header;
    AppendLittleEndian32(header, kLocalMark);
    AppendCommon(header, entry, packed);
    Append(header, entry.name);
    return header;
}

void AppendRow(OwnedBytes& to, const ZipEntry& entry, std::size_t packed, std::size_t at) {
    AppendLittleEndian32(to, kDirectoryMark);
    Append16(to, kVersion); // made by the system whose files have no rights
    AppendCommon(to, entry, packed);
    Append16(to, 0);             // comment
    Append16(to, 0);             // disk
    Append16(to, 0);             // text or not
    AppendLittleEndian32(to, 0); // attributes
    AppendLittleEndian32(to, static_cast<std::uint32_t>(at));
    Append(to, entry.name);
}

void AppendEnd(OwnedBytes& to, std::size_t count, std::size_t at) {
    const auto size = static_cast<std::uint32_t>(to.size());
    AppendLittleEndian32(to, kEndMark);
    Append16(to, 0);
    Append16(to, 0);
    Append16(to, static_cast<std::uint32_t>(count));
    Append16(to, static_cast<std::uint32_t>(count));
    AppendLittleEndian32(to, size);
    AppendLittleEndian32(to, static_cast<std::uint32_t>(at));
    Append16(to, 0); // comment
}

} // namespace

NewZipEntry WithBytes(const ZipEntry& old, Bytes plain) {
    NewZipEntry made{old, {}, true};
    made.entry.size = plain.size();
    made.entry.checksum = ChecksumOf(plain);
    made.entry.packed = {};
    const bool isPacked = old.method == ZipMethod::Deflated;
    made.made = isPacked ? Deflate(plain) : OwnedBytes(plain.begin(), plain.end());
    return made;
}

PartList WriteZip(std::vector<NewZipEntry> entries) {
    PartList parts;
    OwnedBytes directory;
    std::size_t at = 0;
    for (NewZipEntry& one : entries) {
        const std::size_t packed = one.isMade ? one.made.size() : one.entry.packed.size();
        OwnedBytes header = LocalHeader(one.entry, packed);
        AppendRow(directory, one.entry, packed, at);
        at += header.size() + packed;
        parts.Add(std::move(header));
        if (one.isMade) {
            parts.Add(std::move(one.made));
        } else {
            parts.Keep(one.entry.packed);
        }
    }
    AppendEnd(directory, entries.size(), at);
    parts.Add(std::move(directory));
    return parts;
}

} // namespace transforms::documents
