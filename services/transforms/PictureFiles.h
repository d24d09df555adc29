// The files of a request as the picture codecs read and write them, in blocks.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "services/transforms/raster/PictureFile.h"

namespace transforms {

// Keeps one block of the file in memory, as codecs read a few bytes at a time. The handle stays the
// caller's.
class FileSource : public PictureSource {
public:
    // IsOpen is false when the size can't be found out.
    explicit FileSource(HANDLE file);

    bool IsOpen() const noexcept { return isOpen_; }
    std::uint64_t Size() const noexcept override { return size_; }
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override;
    // Keeps no memory until the next read.
    void Rest() noexcept { block_ = {}; }

private:
    bool ReadBlock(std::uint64_t offset);

    HANDLE file_;
    std::uint64_t size_ = 0;
    bool isOpen_ = false;
    std::uint64_t blockOffset_ = 0;
    std::vector<std::uint8_t> block_; // what is in memory, from the offset on
};

// Collects bytes in order and writes them in blocks. The handle stays the caller's.
class FileTarget : public PictureTarget {
public:
    explicit FileTarget(HANDLE file) noexcept : file_(file) {}

    bool WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) override;
    bool ReadBack(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override;

    // Writes what is still collected. False when it can't be written.
    bool Flush();
    std::uint64_t Size() const noexcept { return size_; }

private:
    HANDLE file_;
    std::uint64_t size_ = 0;
    std::uint64_t blockOffset_ = 0;
    std::vector<std::uint8_t> block_; // to be written at the offset
};

} // namespace transforms
