// Views of a file's bytes, and numbers read out of them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace transforms::personal {

using Bytes = std::span<const std::byte>;
using OwnedBytes = std::vector<std::byte>;

inline std::uint8_t ByteAt(Bytes bytes, std::size_t at) {
    return std::to_integer<std::uint8_t>(bytes[at]);
}

// The caller has checked that the bytes are there.
inline std::uint32_t BigEndian16(Bytes bytes, std::size_t at) {
    return std::uint32_t{ByteAt(bytes, at)} << 8 | ByteAt(bytes, at + 1);
}

inline std::uint32_t BigEndian32(Bytes bytes, std::size_t at) {
    return BigEndian16(bytes, at) << 16 | BigEndian16(bytes, at + 2);
}

inline std::uint32_t LittleEndian32(Bytes bytes, std::size_t at) {
    return std::uint32_t{ByteAt(bytes, at)} | std::uint32_t{ByteAt(bytes, at + 1)} << 8 |
           std::uint32_t{ByteAt(bytes, at + 2)} << 16 | std::uint32_t{ByteAt(bytes, at + 3)} << 24;
}

// Names in files, such as a chunk's type. The view is of the file's bytes.
inline std::string_view TextOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Whether the text is in the bytes at this place. A text with a null inside is written with ""sv.
inline bool HasTextAt(Bytes bytes, std::size_t at, std::string_view text) {
    if (at > bytes.size() || bytes.size() - at < text.size()) return false;
    return std::ranges::equal(bytes.subspan(at, text.size()), text,
                              [](std::byte byte, char c) { return byte == std::byte(c); });
}

inline bool StartsWith(Bytes bytes, std::string_view text) { return HasTextAt(bytes, 0, text); }

inline bool AreZero(Bytes bytes) {
    return std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{0}; });
}

inline void AppendByte(OwnedBytes& to, unsigned value) {
    to.push_back(static_cast<std::byte>(value));
}

inline void AppendBigEndian16(OwnedBytes& to, std::uint32_t value) {
    AppendByte(to, value >> 8 & 0xFF);
    AppendByte(to, value & 0xFF);
}

inline void AppendBigEndian32(OwnedBytes& to, std::uint32_t value) {
    AppendBigEndian16(to, value >> 16);
    AppendBigEndian16(to, value & 0xFFFF);
}

inline void AppendLittleEndian32(OwnedBytes& to, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) AppendByte(to, value >> shift & 0xFF);
}

// By resize, as the compiler takes an insertion at the end for one past the memory.
inline void Append(OwnedBytes& to, Bytes more) {
    const std::size_t size = to.size();
    to.resize(size + more.size());
    std::ranges::copy(more, to.begin() + static_cast<std::ptrdiff_t>(size));
}

inline void Append(OwnedBytes& to, std::string_view text) {
    Append(to, std::as_bytes(std::span(text)));
}

} // namespace transforms::personal
