#include "ObLib/Src/ObBuffer.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/ObMemory.h"

namespace ObLib {
namespace {

constexpr wchar_t kModule[] = L"ObLib\\Src\\ObBuffer.cpp";

} // namespace

static_assert(offsetof(ObBuffer, allocate) == 0 && offsetof(ObBuffer, release) == 8 &&
              offsetof(ObBuffer, data) == 16 && offsetof(ObBuffer, size) == 24 &&
              offsetof(ObBuffer, capacity) == 32 && sizeof(ObBuffer) == 40);

void ObBuffer::Duplicate(const ObBuffer& other) {
    data = std::malloc(other.size);
    if (data == nullptr && other.size != 0) throw std::bad_alloc();
    if (other.size != 0) std::memcpy(data, other.data, other.size);
    size = capacity = other.size;
}

ObBuffer& ObBuffer::operator=(const ObBuffer& other) {
    ObBuffer copy(other);
    Swap(copy);
    return *this;
}

ObBuffer& ObBuffer::operator=(ObBuffer&& other) noexcept {
    ObBuffer moved(std::move(other));
    Swap(moved);
    return *this;
}

void ObBuffer::Swap(ObBuffer& other) noexcept {
    std::swap(allocate, other.allocate);
    std::swap(release, other.release);
    std::swap(data, other.data);
    std::swap(size, other.size);
    std::swap(capacity, other.capacity);
}

void ObBuffer::Replace(std::uint64_t bytes, std::int32_t mode) {
    void* const block = allocate(bytes);
    if (block == nullptr) throw std::bad_alloc();
    if (mode == kResizeCopies && size != 0) std::memcpy(block, data, size);
    if (mode == kResizeClears) {
        Wipe(data, capacity);
        Wipe(block, bytes);
    }
    if (data != nullptr) release(data);
    data = block;
    capacity = bytes;
}

void ObBuffer::Resize(std::uint64_t bytes, std::int32_t mode) {
    ObAssert(mode >= kResizeCopies && mode <= kResizeLeaves);
    if (bytes > capacity)
        Replace(bytes, mode);
    else if (mode == kResizeClears)
        Wipe(data, capacity);
    size = bytes;
}

} // namespace ObLib
