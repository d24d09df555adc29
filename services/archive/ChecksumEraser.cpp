#include "services/archive/ChecksumEraser.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace obarchive {
namespace {

// Offsets and signatures of the format.
constexpr std::uint32_t kEndSignature = 0x06054b50;
constexpr std::size_t kEndSize = 22; // without the archive's comment behind it
constexpr std::uint32_t kLocator64Signature = 0x07064b50;
constexpr std::size_t kLocator64Size = 20;
constexpr std::uint32_t kEnd64Signature = 0x06064b50;
constexpr std::size_t kEnd64Size = 56;
constexpr std::uint32_t kCentralSignature = 0x02014b50;
constexpr std::size_t kCentralSize = 46;
constexpr std::size_t kCentralMethod = 10;
constexpr std::size_t kCentralChecksum = 16;
constexpr std::size_t kLocalChecksum = 14;
constexpr std::uint16_t kEncryptedMethod = 99;
constexpr std::uint16_t kZip64Extra = 1;
constexpr std::uint32_t kIn64 = 0xFFFFFFFF; // the value stands in the 64-bit extra field
constexpr std::uint32_t kNoChecksum = 0;

template <class Number>
Number At(const std::uint8_t* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

struct Span {
    std::uint64_t start = 0;
    std::uint64_t size = 0;
};

std::optional<Span> FindDirectory64(OutputFile& output, std::uint64_t locatorAt) {
    std::uint8_t locator[kLocator64Size];
    std::uint8_t end[kEnd64Size];
    if (!output.ReadAt(locatorAt, locator, sizeof locator)) return std::nullopt;
    if (At<std::uint32_t>(locator) != kLocator64Signature) return std::nullopt;
    if (!output.ReadAt(At<std::uint64_t>(locator + 8), end, sizeof end)) return std::nullopt;
    if (At<std::uint32_t>(end) != kEnd64Signature) return std::nullopt;
    return Span{At<std::uint64_t>(end + 48), At<std::uint64_t>(end + 40)};
}

std::optional<Span> FindDirectory(OutputFile& output, std::size_t commentSize) {
    std::uint8_t end[kEndSize];
    if (output.Length() < kEndSize + commentSize) return std::nullopt;
    const std::uint64_t endAt = output.Length() - commentSize - kEndSize;
    if (!output.ReadAt(endAt, end, sizeof end)) return std::nullopt;
    if (At<std::uint32_t>(end) != kEndSignature) return std::nullopt;
    const bool in64 = At<std::uint16_t>(end + 10) == 0xFFFF ||
                      At<std::uint32_t>(end + 12) == kIn64 || At<std::uint32_t>(end + 16) == kIn64;
    if (!in64) return Span{At<std::uint32_t>(end + 16), At<std::uint32_t>(end + 12)};
    if (endAt < kLocator64Size) return std::nullopt;
    return FindDirectory64(output, endAt - kLocator64Size);
}

// Where the entry's own header stands. `extra` is its extra fields.
std::optional<std::uint64_t> LocalHeader(const std::uint8_t* entry, const std::uint8_t* extra,
                                         std::size_t extraSize) {
    const auto offset = At<std::uint32_t>(entry + 42);
    if (offset != kIn64) return offset;
    // The 64-bit field holds, in this order, those of the three values that didn't fit.
    const std::size_t before = (At<std::uint32_t>(entry + 24) == kIn64 ? 8U : 0U) +
                               (At<std::uint32_t>(entry + 20) == kIn64 ? 8U : 0U);
    for (std::size_t at = 0; at + 4 <= extraSize;) {
        const std::size_t size = At<std::uint16_t>(extra + at + 2);
        if (at + 4 + size > extraSize) break;
        if (At<std::uint16_t>(extra + at) == kZip64Extra && before + 8 <= size) {
            return At<std::uint64_t>(extra + at + 4 + before);
        }
        at += 4 + size;
    }
    return std::nullopt;
}

bool WriteAt(OutputFile& output, std::uint64_t position, const void* data, std::size_t size) {
    return output.Seek(position) && output.Write(data, size);
}

// Clears the checksums of the entries in `directory` and of their own headers.
bool EraseIn(std::vector<std::uint8_t>& directory, OutputFile& output) {
    for (std::size_t at = 0; at < directory.size();) {
        if (directory.size() - at < kCentralSize) return false;
        std::uint8_t* const entry = directory.data() + at;
        if (At<std::uint32_t>(entry) != kCentralSignature) return false;
        const std::size_t name = At<std::uint16_t>(entry + 28);
        const std::size_t extra = At<std::uint16_t>(entry + 30);
        const std::size_t size = kCentralSize + name + extra + At<std::uint16_t>(entry + 32);
        if (directory.size() - at < size) return false;
        if (At<std::uint16_t>(entry + kCentralMethod) == kEncryptedMethod) {
            const auto local = LocalHeader(entry, entry + kCentralSize + name, extra);
            if (!local) return false;
            std::memcpy(entry + kCentralChecksum, &kNoChecksum, sizeof kNoChecksum);
            if (!WriteAt(output, *local + kLocalChecksum, &kNoChecksum, sizeof kNoChecksum)) {
                return false;
            }
        }
        at += size;
    }
    return true;
}

} // namespace

bool EraseEncryptedChecksums(OutputFile& output, std::size_t commentSize) {
    const std::optional<Span> span = FindDirectory(output, commentSize);
    if (!span || span->start > output.Length() || span->size > output.Length() - span->start) {
        return false;
    }
    std::vector<std::uint8_t> directory(static_cast<std::size_t>(span->size));
    if (!output.ReadAt(span->start, directory.data(), directory.size())) return false;
    return EraseIn(directory, output) &&
           WriteAt(output, span->start, directory.data(), directory.size()) && output.Flush();
}

} // namespace obarchive
