#include "services/archive/compress/SpareBlocks.h"

#include <algorithm>
#include <bit>

namespace obarchive {
namespace {

// Below this, the heap reuses memory by itself.
constexpr std::size_t kLeast = 64 * 1024;

// Few sizes, so that a spare buffer fits the next file: powers of two, and a part in 64 more for
// what a compressor may add to data that doesn't shrink.
std::size_t CapacityFor(std::size_t size) {
    if (size < kLeast) return size;
    const std::size_t plain = std::bit_ceil((size * 64 + 64) / 65);
    return plain + plain / 64;
}

} // namespace

SpareBlocks::SpareBlocks(std::size_t most) : most_(most) { spare_.reserve(most / kLeast); }

ByteBuffer SpareBlocks::Take(std::size_t size) {
    const std::size_t capacity = CapacityFor(size);
    if (capacity >= kLeast) {
        const Locked locked(lock_);
        const auto found = std::find_if(spare_.begin(), spare_.end(), [=](const ByteBuffer& one) {
            return one.Capacity() == capacity;
        });
        if (found != spare_.end()) {
            ByteBuffer buffer = std::move(*found);
            spare_.erase(found);
            kept_ -= capacity;
            return buffer;
        }
    }
    return ByteBuffer(capacity);
}

void SpareBlocks::Give(ByteBuffer buffer) noexcept {
    const std::size_t capacity = buffer.Capacity();
    // Take looks for the sizes of CapacityFor alone.
    if (capacity < kLeast || CapacityFor(capacity) != capacity) return;
    static_cast<void>(buffer.Resize(0));
    const Locked locked(lock_);
    // Never grows past what the constructor reserved: each buffer has at least kLeast bytes.
    if (kept_ + capacity > most_) return;
    kept_ += capacity;
    spare_.push_back(std::move(buffer));
}

} // namespace obarchive
