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
    Require(once->size() <= bytes.size() + kFontBytes + font.face.size() * sizeof(wchar_t) + 4,
            "it grows by the font alone");
    if ((KindWord(*once) == 0xFFFF) != (KindWord(bytes) == 0xFFFF)) return 0;
    Require(RewriteTemplate(*once, extra, font) == once, "the second time changes nothing");
    // Whatever is lost on the way to another font and back would be missing.
    const auto other = RewriteTemplate(*once, extra, TemplateFont{L"Another face", 11});
    Require(other && RewriteTemplate(*other, extra, font) == once, "the items stay");
    return 0;
}
