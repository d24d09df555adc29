#include "services/transforms/personal/Crc32.h"

#include <array>

namespace transforms::personal {
namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320; // bits reversed
constexpr std::size_t kStep = 8;                  // bytes taken at once

using Table = std::array<std::array<std::uint32_t, 256>, kStep>;

// Row n has the checksum of a byte with n bytes of 0 after it.
constexpr Table MakeTable() {
    Table table = {};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? kPolynomial : 0);
        table[0][byte] = crc;
    }
    for (std::size_t row = 1; row < kStep; ++row) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t before = table[row - 1][byte];
            table[row][byte] = before >> 8 ^ table[0][before & 0xFF];
        }
    }
    return table;
}

constexpr Table kTable = MakeTable();

std::uint32_t AddEightBytes(std::uint32_t crc, Bytes bytes) {
    crc ^= LittleEndian32(bytes, 0);
    std::uint32_t sum = 0;
    for (std::size_t at = 0; at < 4; ++at) {
        sum ^= kTable[7 - at][crc >> 8 * at & 0xFF] ^ kTable[3 - at][ByteAt(bytes, 4 + at)];
    }
    return sum;
}

} // namespace

std::uint32_t Crc32(Bytes bytes) {
    std::uint32_t crc = ~std::uint32_t{0};
    for (; bytes.size() >= kStep; bytes = bytes.subspan(kStep)) crc = AddEightBytes(crc, bytes);
    for (const std::byte byte : bytes) {
        crc = crc >> 8 ^ kTable[0][(crc ^ std::to_integer<std::uint32_t>(byte)) & 0xFF];
    }
    return ~crc;
}

} // namespace transforms::personal
