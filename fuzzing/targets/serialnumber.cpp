// The serial number of a certificate: found in place, and nothing is read past the end of the
// bytes.
#include <cstdint>
#include <span>

#include "fuzzing/support/Require.h"
#include "services/archive/recovery/DerReader.h"
#include "services/archive/recovery/DerWriter.h"

using namespace obarchive;

namespace {

using Bytes = std::span<const std::uint8_t>;

bool IsInside(Bytes part, Bytes whole) {
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

void CheckValue(const DerValue& value, Bytes bytes) {
    Require(IsInside(value.whole, bytes), "a value is part of the bytes");
    Require(IsInside(value.content, value.whole), "the content is part of the value");
    Require(value.content.data() + value.content.size() == value.whole.data() + value.whole.size(),
            "a value ends with its content");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const Bytes input(bytes, size);
    if (const auto value = FirstDerValue(input)) {
        CheckValue(*value, input);
        Require(value->whole.data() == bytes, "the value is at the start");
    }
    if (const auto serial = SerialNumberOf(input)) {
        CheckValue(*serial, input);
        Require(serial->tag == static_cast<std::uint8_t>(DerTag::Integer),
                "the number is an integer");
        const auto again = FirstDerValue(serial->whole);
        Require(again && again->whole.size() == serial->whole.size(), "it is a whole value");
    }
    return 0;
}
