// The writer of distinguished encoding, beside a strict reader: nested values come back, in the
// shortest form that the encoding allows.
#include <algorithm>
#include <optional>
#include <span>

#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "services/archive/recovery/DerWriter.h"

using namespace obarchive;

namespace {

using Bytes = std::span<const std::uint8_t>;

struct Value {
    std::uint8_t tag;
    Bytes content;
    Bytes rest;
};

std::optional<std::size_t> LongLength(Bytes& bytes, std::size_t count) {
    if (count == 0 || count > sizeof(std::size_t) || bytes.size() < count) return std::nullopt;
    if (bytes[0] == 0) return std::nullopt; // not the shortest form
    std::size_t length = 0;
    for (std::size_t at = 0; at < count; ++at) length = length << 8 | bytes[at];
    bytes = bytes.subspan(count);
    return length < 0x80 ? std::nullopt : std::optional(length);
}

std::optional<Value> ReadValue(Bytes bytes) {
    if (bytes.size() < 2) return std::nullopt;
    const std::uint8_t tag = bytes[0];
    std::optional<std::size_t> length = bytes[1];
    bytes = bytes.subspan(2);
    if (*length >= 0x80) length = LongLength(bytes, *length - 0x80);
    if (!length || *length > bytes.size()) return std::nullopt;
    return Value{tag, bytes.first(*length), bytes.subspan(*length)};
}

void RequireValue(Bytes encoded, DerTag tag, Bytes content) {
    const auto value = ReadValue(encoded);
    Require(value.has_value(), "the encoding is well-formed and shortest");
    Require(value->tag == static_cast<std::uint8_t>(tag), "the tag comes back");
    Require(std::ranges::equal(value->content, content), "the content comes back");
    Require(value->rest.empty(), "nothing comes after it");
}

constexpr DerTag kTags[] = {DerTag::Integer,   DerTag::OctetString,       DerTag::Null,
                            DerTag::ObjectId,  DerTag::Sequence,          DerTag::Set,
                            DerTag::Explicit0, DerTag::ImplicitPrimitive0};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const DerTag tag = input.Pick(kTags);
    const DerTag outer = input.Pick(kTags);
    // Lengths around each form's limit, which no input of the fuzzer is long enough for.
    constexpr std::size_t kLengths[] = {0, 0x7F, 0x80, 0xFF, 0x100, 0x101, 0x10000};
    const std::size_t extra = input.Pick(kLengths);
    DerBytes content(input.Bytes(), input.Bytes() + input.Left());
    content.resize(content.size() + extra, 0x5A);
    const DerBytes inner = Der(tag, content);
    RequireValue(inner, tag, content);
    const DerBytes null = Der(DerTag::Null, {});
    const DerBytes nested = Der(outer, {null, inner, inner});
    DerBytes parts = null;
    parts.insert(parts.end(), inner.begin(), inner.end());
    parts.insert(parts.end(), inner.begin(), inner.end());
    RequireValue(nested, outer, parts);
    return 0;
}
