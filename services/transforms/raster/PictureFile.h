// The files that the picture codecs read and write, without a system in sight: the work process
// implements them on handles, tests and the search for a size in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace transforms {

using PictureBytes = std::vector<std::uint8_t>;

// Read by one thread at a time. The size doesn't change.
class PictureSource {
public:
    virtual ~PictureSource() = default;
    virtual std::uint64_t Size() const noexcept = 0;
    // Fills as much of `to` as the file has from `offset` on. False when the file can't be read.
    virtual bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) = 0;
};

// Written by one thread at a time, mostly in order; TIFF returns to its header.
class PictureTarget {
public:
    virtual ~PictureTarget() = default;
    // False when the bytes can't be written, as on a full disk.
    virtual bool WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) = 0;
    // TIFF reads back what it wrote. False when that can't be done.
    virtual bool ReadBack(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) = 0;
};

// Doesn't own the bytes.
class MemorySource final : public PictureSource {
public:
    explicit MemorySource(std::span<const std::uint8_t> bytes) noexcept : bytes_(bytes) {}
    std::uint64_t Size() const noexcept override { return bytes_.size(); }
    bool ReadAt(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override;

private:
    std::span<const std::uint8_t> bytes_;
};

class MemoryTarget final : public PictureTarget {
public:
    bool WriteAt(std::uint64_t offset, std::span<const std::uint8_t> from) override;
    bool ReadBack(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& read) override;

    PictureBytes bytes;
};

// For one codec: reads and writes that throw PictureFailure.
std::size_t ReadPicture(PictureSource& source, std::uint64_t offset, std::span<std::uint8_t> to);
void WritePicture(PictureTarget& target, std::uint64_t offset, std::span<const std::uint8_t> from);
// The whole file, for codecs that need it at once. Throws TooLarge above `most` bytes.
PictureBytes ReadWholePicture(PictureSource& source, std::uint64_t most);

} // namespace transforms
