#include "services/archive/recovery/DerWriter.h"

namespace obarchive {
namespace {

constexpr std::size_t kShortLengths = 0x80; // below, the length is one byte

void AppendLength(DerBytes& out, std::size_t length) {
    if (length < kShortLengths) {
        out.push_back(static_cast<std::uint8_t>(length));
        return;
    }
    std::uint8_t count = 0;
    for (std::size_t rest = length; rest != 0; rest >>= 8) ++count;
    out.push_back(static_cast<std::uint8_t>(kShortLengths | count));
    for (; count != 0; --count) {
        out.push_back(static_cast<std::uint8_t>(length >> (8 * (count - 1))));
    }
}

} // namespace

DerBytes Der(DerTag tag, std::span<const std::uint8_t> content) {
    DerBytes out{static_cast<std::uint8_t>(tag)};
    AppendLength(out, content.size());
    out.insert(out.end(), content.begin(), content.end());
    return out;
}

DerBytes Der(DerTag tag, std::initializer_list<DerBytes> parts) {
    DerBytes content;
    for (const DerBytes& part : parts) content.insert(content.end(), part.begin(), part.end());
    return Der(tag, content);
}

} // namespace obarchive
