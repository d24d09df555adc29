#include "services/transforms/PictureFiles.h"

#include <algorithm>
#include <cstring>

namespace transforms {
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;

// Where the next read or write of a synchronous handle begins.
OVERLAPPED At(std::uint64_t offset) noexcept {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

// Reads up to the end of the file; `read` is what was there.
bool ReadFrom(HANDLE file, std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    for (read = 0; read < to.size();) {
        OVERLAPPED place = At(offset + read);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(to.size() - read, kBlock));
        if (!ReadFile(file, to.data() + read, wanted, &count, &place)) {
            return GetLastError() == ERROR_HANDLE_EOF;
        }
        if (count == 0) return true;
        read += count;
    }
    return true;
}

bool WriteTo(HANDLE file, std::uint64_t offset, std::span<const std::uint8_t> from) {
    while (!from.empty()) {
        OVERLAPPED place = At(offset);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(from.size(), kBlock));
        if (!WriteFile(file, from.data(), wanted, &count, &place) || count == 0) return false;
        offset += count;
        from = from.subspan(count);
    }
    return true;
}

} // namespace

FileSource::FileSource(HANDLE file) : file_(file) {
    LARGE_INTEGER size{};
    isOpen_ = GetFileSizeEx(file, &size) != FALSE;
    size_ = static_cast<std::uint64_t>(size.QuadPart);
}

bool FileSource::ReadBlock(std::uint64_t offset) {
    block_.resize(kBlock);
    std::size_t read = 0;
    const bool isRead = ReadFrom(file_, offset, block_, read);
    block_.resize(isRead ? read : 0);
    blockOffset_ = offset;
    return isRead;
}

bool FileSource::ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    if (to.size() >= kBlock) return ReadFrom(file_, offset, to, read);
    for (read = 0; read < to.size();) {
        const std::uint64_t at = offset + read;
        const bool isThere = at >= blockOffset_ && at - blockOffset_ < block_.size();
        if (!isThere && !ReadBlock(at)) return false;
        const auto from = static_cast<std::size_t>(at - blockOffset_);
        const std::size_t count = std::min(block_.size() - from, to.size() - read);
        if (count == 0) break; // the file's end
        std::memcpy(to.data() + read, block_.data() + from, count);
        read += count;
    }
    return true;
}

bool FileTarget::WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) {
    if (offset != blockOffset_ + block_.size() || block_.size() + from.size() > kBlock) {
        if (!Flush()) return false;
        blockOffset_ = offset;
    }
    if (from.size() >= kBlock) {
        if (!WriteTo(file_, offset, from)) return false;
        blockOffset_ = offset + from.size();
    } else {
        block_.insert(block_.end(), from.begin(), from.end());
    }
    size_ = std::max<std::uint64_t>(size_, offset + from.size());
    return true;
}

bool FileTarget::ReadBack(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) {
    return Flush() && ReadFrom(file_, offset, to, read);
}

bool FileTarget::Flush() {
    const bool isWritten = WriteTo(file_, blockOffset_, block_);
    blockOffset_ += block_.size();
    block_.clear();
    return isWritten;
}

} // namespace transforms
