// Bytes on the heap that aren't cleared first, as they are about to be written anyway.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

namespace obarchive {

// Move-only. `Resize` never allocates: the size is at most the capacity.
class ByteBuffer {
public:
    ByteBuffer() = default;
    explicit ByteBuffer(std::size_t capacity)
        : bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(capacity)), capacity_(capacity) {}
    ByteBuffer(ByteBuffer&& other) noexcept { *this = std::move(other); }
    ByteBuffer& operator=(ByteBuffer&& other) noexcept {
        bytes_ = std::move(other.bytes_);
        capacity_ = std::exchange(other.capacity_, 0);
        size_ = std::exchange(other.size_, 0);
        return *this;
    }

    std::uint8_t* Data() noexcept { return bytes_.get(); }
    std::size_t Capacity() const noexcept { return capacity_; }
    std::size_t Size() const noexcept { return size_; }
    // False, and as it was, when there is no room for it.
    bool Resize(std::size_t size) noexcept {
        if (size > capacity_) return false;
        size_ = size;
        return true;
    }
    std::span<const std::uint8_t> Bytes() const noexcept { return {bytes_.get(), size_}; }
    std::span<std::uint8_t> Bytes() noexcept { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
};

} // namespace obarchive
