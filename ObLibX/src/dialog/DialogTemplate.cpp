#include "ObLibX/src/dialog/DialogTemplate.h"

#include <cstring>

namespace ObLibX {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint32_t kSetFont = 0x40;          // DS_SETFONT
constexpr std::uint16_t kExtendedMark = 0xFFFF;   // second word of an extended template
constexpr std::uint16_t kOrdinalFollows = 0xFFFF; // in place of a text
// In place of a size: the system's message font, without anything after it.
constexpr std::uint16_t kMessageFont = 0x7FFF;
constexpr std::size_t kAlignment = 4; // of the items

// Where a kind of template has its fields.
struct TemplateKind {
    std::size_t style;      // offset in bytes
    std::size_t header;     // bytes before the menu
    std::size_t fontDetail; // bytes between point size and face
};

constexpr TemplateKind kPlain = {0, 18, 0};
constexpr TemplateKind kExtended = {12, 26, 4};

// Weight 400, upright, the default charset: what the system takes where a template has no font.
constexpr std::byte kDefaultDetail[] = {std::byte{0x90}, std::byte{1}, std::byte{0}, std::byte{1}};

// Reads 16-bit words one after the other, and fails for good at the end.
class WordReader {
public:
    explicit WordReader(Bytes bytes) : bytes_(bytes) {}

    std::size_t At() const { return at_; }
    bool IsGood() const { return isGood_; }

    void Skip(std::size_t count) {
        if (count > bytes_.size() - at_) isGood_ = false;
        if (isGood_) at_ += count;
    }
    std::uint16_t Word() {
        const std::size_t from = at_;
        Skip(sizeof(std::uint16_t));
        if (!isGood_) return 0;
        std::uint16_t word = 0;
        std::memcpy(&word, &bytes_[from], sizeof word);
        return word;
    }
    void SkipText() {
        while (isGood_ && Word() != 0) {
        }
    }
    void SkipTextOrOrdinal() {
        const std::uint16_t first = Word();
        if (first == kOrdinalFollows) {
            Skip(sizeof(std::uint16_t));
        } else if (first != 0) {
            SkipText();
        }
    }

private:
    Bytes bytes_;
    std::size_t at_ = 0;
    bool isGood_ = true;
};

// A template taken apart.
struct TemplateParts {
    TemplateKind kind;
    std::uint32_t style;
    std::size_t titleEnd; // where the font begins, or would
    Bytes fontDetail;     // of its own font; empty: it has none
    Bytes items;
};

std::optional<TemplateKind> KindOf(Bytes bytes) {
    WordReader reader(bytes);
    reader.Word();
    const std::uint16_t mark = reader.Word();
    if (!reader.IsGood()) return {};
    return mark == kExtendedMark ? kExtended : kPlain;
}

std::optional<TemplateParts> TakeApart(Bytes bytes) {
    const auto kind = KindOf(bytes);
    if (!kind || bytes.size() < kind->header) return {};
    TemplateParts parts{*kind, 0, 0, {}, {}};
    std::memcpy(&parts.style, &bytes[kind->style], sizeof parts.style);
    WordReader reader(bytes);
    reader.Skip(kind->header);
    reader.SkipTextOrOrdinal(); // menu
    reader.SkipTextOrOrdinal(); // class
    reader.SkipText();          // title
    parts.titleEnd = reader.At();
    std::size_t detail = 0;
    bool hasFace = false;
    if ((parts.style & kSetFont) != 0) {
        hasFace = reader.Word() != kMessageFont;
        detail = reader.At();
        if (hasFace) reader.Skip(kind->fontDetail);
        if (hasFace) reader.SkipText();
    }
    if (!reader.IsGood()) return {};
    if (hasFace) parts.fontDetail = bytes.subspan(detail, kind->fontDetail);
    // A template without items may end before the next multiple of four.
    const std::size_t aligned = (reader.At() + kAlignment - 1) / kAlignment * kAlignment;
    if (aligned < bytes.size()) parts.items = bytes.subspan(aligned);
    return parts;
}

void Append(std::vector<std::byte>& to, Bytes bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void AppendFont(std::vector<std::byte>& to, const TemplateParts& parts, const TemplateFont& font) {
    Append(to, std::as_bytes(std::span(&font.size, 1)));
    if (parts.kind.fontDetail != 0) {
        Append(to, parts.fontDetail.empty() ? Bytes(kDefaultDetail) : parts.fontDetail);
    }
    Append(to, std::as_bytes(std::span(font.face.c_str(), font.face.size() + 1)));
    to.resize((to.size() + kAlignment - 1) / kAlignment * kAlignment);
}

} // namespace

std::optional<std::vector<std::byte>> RewriteTemplate(Bytes bytes, std::uint32_t extraStyle,
                                                      const std::optional<TemplateFont>& font) {
    const auto parts = TakeApart(bytes);
    if (!parts) return {};
    std::vector<std::byte> written;
    if (font) {
        Append(written, bytes.first(parts->titleEnd));
        AppendFont(written, *parts, *font);
        Append(written, parts->items);
    } else {
        Append(written, bytes);
    }
    // A template without a font mustn't announce one.
    const std::uint32_t added = font ? extraStyle | kSetFont : extraStyle & ~kSetFont;
    const std::uint32_t style = parts->style | added;
    std::memcpy(&written[parts->kind.style], &style, sizeof style);
    return written;
}

} // namespace ObLibX
