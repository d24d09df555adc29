// Reads values in the distinguished encoding, one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace obarchive {

struct DerValue {
    std::uint8_t tag = 0;
    std::span<const std::uint8_t> content;
    std::span<const std::uint8_t> whole; // with tag and length
};

// The value at the start of `bytes`; nothing when they aren't a whole value with a tag of one byte
// and a definite length. The views are into `bytes`.
std::optional<DerValue> FirstDerValue(std::span<const std::uint8_t> bytes);

// The serial number of a certificate as the certificate has it, tag and length included; nothing
// when the bytes aren't the start of a certificate.
std::optional<DerValue> SerialNumberOf(std::span<const std::uint8_t> certificate);

} // namespace obarchive
