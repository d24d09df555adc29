// Numbers of the zip format.
#pragma once

#include <cstddef>
#include <cstdint>

namespace transforms::documents::zip {

inline constexpr std::uint32_t kLocalMark = 0x04034B50;
inline constexpr std::uint32_t kDirectoryMark = 0x02014B50;
inline constexpr std::uint32_t kEndMark = 0x06054B50;
inline constexpr std::size_t kLocalSize = 30;
inline constexpr std::size_t kDirectorySize = 46;
inline constexpr std::size_t kEndSize = 22;
inline constexpr std::size_t kLongestComment = 0xFFFF;
// A field with such a value has its number in a larger field elsewhere.
inline constexpr std::uint32_t kLarger16 = 0xFFFF;
inline constexpr std::uint32_t kLarger32 = 0xFFFFFFFF;
inline constexpr std::uint32_t kEncryptedFlags = 1u << 0 | 1u << 6 | 1u << 13;
inline constexpr std::uint32_t kUtf8Flag = 1u << 11;
inline constexpr std::uint32_t kVersion = 20;    // needed for folders and deflate
inline constexpr std::uint32_t kFirstDay = 0x21; // 1 January 1980, the date of no date

} // namespace transforms::documents::zip
