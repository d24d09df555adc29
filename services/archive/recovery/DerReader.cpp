#include "services/archive/recovery/DerReader.h"

#include "services/archive/recovery/DerWriter.h"

namespace obarchive {
namespace {

constexpr std::uint8_t kLongTag = 0x1F;    // the tag goes on in the next byte
constexpr std::uint8_t kLongLength = 0x80; // the other bits are the number of length bytes

// Takes the length off the front of `bytes`.
std::optional<std::size_t> TakeLength(std::span<const std::uint8_t>& bytes) {
    if (bytes.empty()) return std::nullopt;
    const std::uint8_t first = bytes.front();
    bytes = bytes.subspan(1);
    if (first < kLongLength) return first;
    const std::size_t count = first & ~kLongLength;
    if (count == 0 || count > sizeof(std::uint32_t) || count > bytes.size()) return std::nullopt;
    std::size_t length = 0;
    for (const std::uint8_t byte : bytes.first(count)) length = length << 8 | byte;
    bytes = bytes.subspan(count);
    return length;
}

bool Is(const std::optional<DerValue>& value, DerTag tag) {
    return value && value->tag == static_cast<std::uint8_t>(tag);
}

} // namespace

std::optional<DerValue> FirstDerValue(std::span<const std::uint8_t> bytes) {
    if (bytes.empty() || (bytes.front() & kLongTag) == kLongTag) return std::nullopt;
    std::span<const std::uint8_t> rest = bytes.subspan(1);
    const auto length = TakeLength(rest);
    if (!length || *length > rest.size()) return std::nullopt;
    const std::size_t header = bytes.size() - rest.size();
    return DerValue{bytes.front(), rest.first(*length), bytes.first(header + *length)};
}

// Certificate: a sequence whose first member is the signed part, a sequence of an optional version
// under [0], the serial number, and more.
std::optional<DerValue> SerialNumberOf(std::span<const std::uint8_t> certificate) {
    const auto outer = FirstDerValue(certificate);
    if (!Is(outer, DerTag::Sequence)) return std::nullopt;
    const auto signedPart = FirstDerValue(outer->content);
    if (!Is(signedPart, DerTag::Sequence)) return std::nullopt;
    auto member = FirstDerValue(signedPart->content);
    if (Is(member, DerTag::Explicit0)) {
        member = FirstDerValue(signedPart->content.subspan(member->whole.size()));
    }
    return Is(member, DerTag::Integer) ? member : std::nullopt;
}

} // namespace obarchive
