// The distinguished encoding: what is written is read back by a strict reader, in the shortest
// form; the reader of certificates stays inside any bytes and finds the serial number that was
// written.
#include <algorithm>
#include <memory>
#include <optional>
#include <span>

#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "services/archive/recovery/DerReader.h"
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

bool IsInside(Bytes part, Bytes whole) {
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

void CheckSerialNumber(const DerValue& serial, Bytes bytes) {
    Require(IsInside(serial.whole, bytes), "a serial number is inside the certificate");
    Require(IsInside(serial.content, serial.whole), "its content is inside it");
    Require(serial.tag == static_cast<std::uint8_t>(DerTag::Integer),
            "a serial number is an integer");
    const auto again = FirstDerValue(serial.whole);
    Require(again && again->whole.size() == serial.whole.size(),
            "a serial number is a whole value");
}

// On the heap, so that the sanitizer sees a read past the end.
void CheckAnyCertificate(Bytes input) {
    const auto exact = std::make_unique<std::uint8_t[]>(input.size());
    std::copy(input.begin(), input.end(), exact.get());
    const Bytes bytes(exact.get(), input.size());
    if (const auto value = FirstDerValue(bytes)) {
        Require(value->whole.data() == bytes.data(), "the first value is at the start");
        Require(IsInside(value->whole, bytes), "and inside the bytes");
        Require(IsInside(value->content, value->whole), "its content is inside it");
        Require(value->content.data() + value->content.size() ==
                    value->whole.data() + value->whole.size(),
                "and at its end");
        const auto strict = ReadValue(bytes);
        Require(!strict || std::ranges::equal(strict->content, value->content),
                "a strict reader finds the same content");
    } else {
        const bool longTag = !bytes.empty() && (bytes[0] & 0x1F) == 0x1F;
        Require(longTag || !ReadValue(bytes), "a strict reader finds none either");
    }
    if (const auto serial = SerialNumberOf(bytes)) CheckSerialNumber(*serial, bytes);
}

void CheckWrittenCertificate(FuzzInput input) {
    const bool version = input.Flag();
    DerBytes number;
    for (std::uint32_t count = input.Below(24); count != 0; --count) number.push_back(input.Byte());
    const DerBytes serial = Der(DerTag::Integer, number);
    const DerBytes more(input.Bytes(), input.Bytes() + input.Left());
    constexpr std::uint8_t kThird[] = {2};
    const DerBytes first = Der(DerTag::Explicit0, {Der(DerTag::Integer, kThird)});
    const DerBytes signedPart = Der(DerTag::Sequence, {version ? first : DerBytes(), serial, more});
    const DerBytes certificate = Der(DerTag::Sequence, {signedPart, more});
    const auto found = SerialNumberOf(certificate);
    Require(found && std::ranges::equal(found->whole, serial),
            "the serial number of a written certificate is found");
}

constexpr DerTag kTags[] = {DerTag::Integer,   DerTag::OctetString,       DerTag::Null,
                            DerTag::ObjectId,  DerTag::Sequence,          DerTag::Set,
                            DerTag::Explicit0, DerTag::ImplicitPrimitive0};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    CheckAnyCertificate({bytes, size});
    CheckWrittenCertificate(FuzzInput(bytes, size));
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
