// Growable bytes with a pluggable pair of functions for their memory.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace ObLib {

// What a resize does with the bytes.
enum ObResizeMode : std::int32_t {
    kResizeCopies = 0, // a new block begins with the bytes of the old one
    kResizeClears = 1, // the block is zeroed, and so is an old one before it is released
    kResizeLeaves = 2, // neither: the bytes are undefined
};

// Owns `data`. Belongs to one thread. A copy has a block of its own, which comes from malloc, and
// therefore the default pair; a move takes the block with its pair. A moved-from buffer is empty.
class ObBuffer {
public:
    using Allocate = void* (*)(std::size_t);
    using Release = void (*)(void*);

    ObBuffer() noexcept = default;
    ObBuffer(Allocate allocator, Release releaser) noexcept
        : allocate(allocator), release(releaser) {}
    ObBuffer(const ObBuffer& other) {
        if (other.data != nullptr) Duplicate(other);
    }
    ObBuffer(ObBuffer&& other) noexcept { Swap(other); }
    ObBuffer& operator=(const ObBuffer& other);
    ObBuffer& operator=(ObBuffer&& other) noexcept;
    ~ObBuffer() {
        if (data != nullptr) release(data);
    }

    // Sets `size`; the block is replaced only when `bytes` is more than `capacity`. `mode` is an
    // ObResizeMode; any other value ends the process. Throws std::bad_alloc and changes nothing.
    void Resize(std::uint64_t bytes, std::int32_t mode);
    void Swap(ObBuffer& other) noexcept;

    Allocate allocate = &std::malloc;
    Release release = &std::free;
    void* data = nullptr;
    std::uint64_t size = 0;     // bytes in use
    std::uint64_t capacity = 0; // bytes at `data`

private:
    void Duplicate(const ObBuffer& other);
    void Replace(std::uint64_t bytes, std::int32_t mode);
};

} // namespace ObLib
