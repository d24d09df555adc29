// Files in memory, and reads and writes that throw.
#include "services/transforms/raster/PictureFile.h"

#include <algorithm>
#include <cstring>

#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {
namespace {

std::size_t CopyFrom(std::span<const std::uint8_t> bytes, std::uint64_t offset,
                     std::span<std::uint8_t> to) noexcept {
    if (offset >= bytes.size()) return 0;
    const std::size_t count = std::min<std::size_t>(to.size(), bytes.size() - offset);
    if (count) std::memcpy(to.data(), bytes.data() + offset, count);
    return count;
}

} // namespace

bool MemorySource::ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    read = CopyFrom(bytes_, offset, to);
    return true;
}

bool MemoryTarget::WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) {
    if (bytes.size() < offset + from.size()) bytes.resize(offset + from.size());
    if (!from.empty()) std::memcpy(bytes.data() + offset, from.data(), from.size());
    return true;
}

bool MemoryTarget::ReadBack(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    read = CopyFrom(bytes, offset, to);
    return true;
}

std::size_t ReadPicture(PictureSource& source, std::uint64_t offset, std::span<std::uint8_t> to) {
    std::size_t read = 0;
    if (!source.ReadAt(offset, to, read)) throw PictureFailure{PictureOutcome::ReadFailed};
    return read;
}

void WritePicture(PictureTarget& target, std::uint64_t offset, std::span<const std::uint8_t> from) {
    if (!target.WriteAt(offset, from)) throw PictureFailure{PictureOutcome::WriteFailed};
}

PictureBytes ReadWholePicture(PictureSource& source, std::uint64_t most) {
    if (source.Size() > most) throw PictureFailure{PictureOutcome::TooLarge};
    PictureBytes bytes(static_cast<std::size_t>(source.Size()));
    bytes.resize(ReadPicture(source, 0, bytes));
    return bytes;
}

} // namespace transforms
