// Dialog templates with another font, on any bytes: nothing past the end is read, the items stay,
// and the second time changes nothing.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "ObLibX/src/dialog/DialogTemplate.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using ObLibX::RewriteTemplate;
using ObLibX::TemplateFont;

namespace {

constexpr std::size_t kLongestFace = 32;

// What the font of a template may take more than without it, beside the face: sizes and padding.
constexpr std::size_t kFontBytes = 6 + 2 * sizeof(wchar_t);

// The second word, by which the kinds of templates differ, is also the upper half of a plain one's
// style: more styles can turn it into that of an extended one.
std::uint16_t KindWord(std::span<const std::byte> bytes) {
    std::uint16_t word = 0;
    std::memcpy(&word, &bytes[2], sizeof word);
    return word;
}

std::uint16_t WordAt(std::span<const std::byte> bytes, std::size_t at) {
    std::uint16_t word = 0;
    if (at + sizeof word <= bytes.size()) std::memcpy(&word, &bytes[at], sizeof word);
    return word;
}

// The end of a text, or of an ordinal where there may be one.
std::size_t TextEnd(std::span<const std::byte> bytes, std::size_t at, bool mayBeOrdinal) {
    if (mayBeOrdinal && WordAt(bytes, at) == 0xFFFF) return at + 4;
    while (WordAt(bytes, at) != 0) at += 2;
    return at + 2;
}

// Where the items of a whole template begin.
std::size_t ItemsAt(std::span<const std::byte> bytes) {
    const bool isExtended = KindWord(bytes) == 0xFFFF;
    const std::uint16_t style = WordAt(bytes, isExtended ? 12 : 0);
    std::size_t at = TextEnd(bytes, isExtended ? 26 : 18, true);
    at = TextEnd(bytes, TextEnd(bytes, at, true), false);
    if ((style & 0x40) != 0) {
        const bool hasFace = WordAt(bytes, at) != 0x7FFF;
        at += 2;
        if (hasFace) at = TextEnd(bytes, at + (isExtended ? 4 : 0), false);
    }
    return (at + 3) / 4 * 4;
}

void CheckItems(std::span<const std::byte> old, std::span<const std::byte> written) {
    const std::size_t at = ItemsAt(old);
    const auto items = at < old.size() ? old.subspan(at) : std::span<const std::byte>();
    Require(written.size() >= items.size() && std::ranges::equal(items, written.last(items.size())),
            "the items are the old ones, byte by byte");
    Require((written.size() - items.size()) % 4 == 0, "and begin at a multiple of four");
}

void CheckWithoutFont(std::span<const std::byte> bytes) {
    const auto same = RewriteTemplate(bytes, 0, {});
    Require(!same || std::ranges::equal(*same, bytes), "nothing to change changes nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    FuzzInput choices(input, size);
    const auto extra = static_cast<std::uint32_t>(choices.Byte()) << 16;
    const TemplateFont font{choices.Name(kLongestFace), choices.Byte()};
    // In memory of exactly this size, so that the sanitizer sees a byte too many.
    const std::vector<std::byte> bytes(reinterpret_cast<const std::byte*>(choices.Bytes()),
                                       reinterpret_cast<const std::byte*>(choices.Bytes()) +
                                           choices.Left());
    CheckWithoutFont(bytes);
    const auto once = RewriteTemplate(bytes, extra, font);
    Require(once.has_value() == RewriteTemplate(bytes, 0, {}).has_value(),
            "what is refused doesn't depend on the font");
    if (!once) return 0;
    CheckItems(bytes, *once);
    Require(once->size() <= bytes.size() + kFontBytes + font.face.size() * sizeof(wchar_t) + 4,
            "it grows by the font alone");
    if ((KindWord(*once) == 0xFFFF) != (KindWord(bytes) == 0xFFFF)) return 0;
    Require(RewriteTemplate(*once, extra, font) == once, "the second time changes nothing");
    // Whatever is lost on the way to another font and back would be missing.
    const auto other = RewriteTemplate(*once, extra, TemplateFont{L"Another face", 11});
    Require(other && RewriteTemplate(*other, extra, font) == once, "the items stay");
    return 0;
}
