// Numbers as files store them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace transforms {

// The number in these bytes, at most four of them; `isLittle`: the lowest byte comes first.
constexpr std::uint32_t StoredNumber(std::span<const std::uint8_t> bytes, bool isLittle) noexcept {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        value = value << 8 | bytes[isLittle ? bytes.size() - 1 - i : i];
    return value;
}

// The number in the first four bytes.
constexpr std::uint32_t BigEndian32(std::span<const std::uint8_t> bytes) noexcept {
    return StoredNumber(bytes.first(4), false);
}
constexpr std::uint32_t LittleEndian32(std::span<const std::uint8_t> bytes) noexcept {
    return StoredNumber(bytes.first(4), true);
}

} // namespace transforms
