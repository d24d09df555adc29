// Dialog templates given another font, byte by byte.
#include "ObLibX/src/dialog/DialogTemplate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace {

using ObLibX::RewriteTemplate;
using ObLibX::TemplateFont;
using Bytes = std::vector<std::byte>;

constexpr std::uint32_t kStyle = 0x80C80000;
constexpr std::uint32_t kSetFont = 0x40;

// Puts a template together, field by field.
class Builder {
public:
    Builder& Word(std::uint16_t value) { return Number(value, 2); }
    Builder& Long(std::uint32_t value) { return Number(value, 4); }
    Builder& Byte(std::uint8_t value) { return Number(value, 1); }
    Builder& Text(std::wstring_view text) {
        for (const wchar_t unit : text) Word(static_cast<std::uint16_t>(unit));
        return Word(0);
    }
    Builder& Align() {
        while (bytes_.size() % 4 != 0) Byte(0);
        return *this;
    }
    // Any bytes in place of items.
    Builder& Items(int size = 12) {
        Align();
        for (int at = 0; at < size; ++at) Byte(static_cast<std::uint8_t>(0xA0 + at));
        return *this;
    }
    Builder& Plain(std::uint32_t style, std::uint16_t items = 1) {
        Long(style).Long(0).Word(items);
        return Word(1).Word(2).Word(300).Word(200);
    }
    Builder& Extended(std::uint32_t style, std::uint16_t items = 1) {
        Word(1).Word(0xFFFF).Long(77).Long(0x10000).Long(style).Word(items);
        return Word(1).Word(2).Word(300).Word(200);
    }
    // No menu, the system's own class.
    Builder& NoNames() { return Word(0).Word(0); }
    operator Bytes() const { return bytes_; }

private:
    Builder& Number(std::uint32_t value, int size) {
        for (int at = 0; at < size; ++at) {
            bytes_.push_back(static_cast<std::byte>(value >> (8 * at)));
        }
        return *this;
    }
    Bytes bytes_;
};

Bytes Rewritten(const Bytes& bytes, std::uint32_t extraStyle,
                const std::optional<TemplateFont>& font) {
    const auto written = RewriteTemplate(bytes, extraStyle, font);
    EXPECT_TRUE(written);
    return written.value_or(Bytes());
}

TEST(DialogTemplateTest, GetsAFontWhereItHasNone) {
    const Bytes before = Builder().Plain(kStyle).NoNames().Text(L"Title").Items();
    const Bytes after = Builder()
                            .Plain(kStyle | kSetFont)
                            .NoNames()
                            .Text(L"Title")
                            .Word(9)
                            .Text(L"Segoe UI")
                            .Items();
    EXPECT_EQ(after, Rewritten(before, 0, TemplateFont{L"Segoe UI", 9}));
}

TEST(DialogTemplateTest, GetsAnotherFont) {
    for (const wchar_t* const old : {L"MS Shell Dlg", L"A", L"A face of thirty-one characters"}) {
        const Bytes before =
            Builder().Plain(kStyle | kSetFont).NoNames().Text(L"T").Word(8).Text(old).Items();
        const Bytes after = Builder()
                                .Plain(kStyle | kSetFont)
                                .NoNames()
                                .Text(L"T")
                                .Word(10)
                                .Text(L"Tahoma")
                                .Items();
        EXPECT_EQ(after, Rewritten(before, 0, TemplateFont{L"Tahoma", 10}));
    }
}

TEST(DialogTemplateTest, KeepsWeightAndCharsetOfAnExtendedOne) {
    const Bytes before = Builder()
                             .Extended(kStyle | kSetFont)
                             .NoNames()
                             .Text(L"Title")
                             .Word(8)
                             .Word(700)
                             .Byte(1)
                             .Byte(238)
                             .Text(L"MS Shell Dlg")
                             .Items();
    const Bytes after = Builder()
                            .Extended(kStyle | kSetFont)
                            .NoNames()
                            .Text(L"Title")
                            .Word(9)
                            .Word(700)
                            .Byte(1)
                            .Byte(238)
                            .Text(L"Segoe UI")
                            .Items();
    EXPECT_EQ(after, Rewritten(before, 0, TemplateFont{L"Segoe UI", 9}));
}

TEST(DialogTemplateTest, GivesAnExtendedOneWithoutAFontANormalOne) {
    const Bytes before = Builder().Extended(kStyle).NoNames().Text(L"").Items();
    const std::wstring face(31, L'F');
    const Bytes after = Builder()
                            .Extended(kStyle | kSetFont)
                            .NoNames()
                            .Text(L"")
                            .Word(9)
                            .Word(400)
                            .Byte(0)
                            .Byte(1)
                            .Text(face)
                            .Items();
    EXPECT_EQ(after, Rewritten(before, 0, TemplateFont{face, 9}));
    EXPECT_EQ(72u, after.size() - before.size()) << "more than a face alone needs";
}

TEST(DialogTemplateTest, PassesMenuAndClassAsNumbersAndAsTexts) {
    const TemplateFont font{L"Segoe UI", 9};
    const Bytes numbers = Builder().Plain(kStyle).Word(0xFFFF).Word(5).Word(0xFFFF).Word(6);
    const Bytes texts = Builder().Plain(kStyle).Text(L"MENU").Text(L"Class");
    for (Bytes before : {numbers, texts}) {
        Bytes after = before;
        const Bytes title = Builder().Text(L"T");
        const Bytes faceAndSize = Builder().Word(9).Text(L"Segoe UI");
        const Bytes items = Builder().Items();
        for (Bytes* const bytes : {&before, &after}) {
            bytes->insert(bytes->end(), title.begin(), title.end());
        }
        after.insert(after.end(), faceAndSize.begin(), faceAndSize.end());
        after[0] = std::byte{kSetFont};
        for (Bytes* const bytes : {&before, &after}) {
            bytes->resize((bytes->size() + 3) / 4 * 4);
            bytes->insert(bytes->end(), items.begin(), items.end());
        }
        EXPECT_EQ(after, Rewritten(before, 0, font));
    }
}

TEST(DialogTemplateTest, GetsMoreStylesAlone) {
    const Bytes plain = Builder().Plain(kStyle).NoNames().Text(L"T").Items();
    EXPECT_EQ(Bytes(Builder().Plain(kStyle | 0x400000).NoNames().Text(L"T").Items()),
              Rewritten(plain, 0x400000, {}));
    const Bytes extended = Builder()
                               .Extended(kStyle | kSetFont)
                               .NoNames()
                               .Text(L"T")
                               .Word(8)
                               .Long(0)
                               .Text(L"A")
                               .Items();
    EXPECT_EQ(Bytes(Builder()
                        .Extended(kStyle | kSetFont | 0x400000)
                        .NoNames()
                        .Text(L"T")
                        .Word(8)
                        .Long(0)
                        .Text(L"A")
                        .Items()),
              Rewritten(extended, 0x400000, {}));
    EXPECT_EQ(plain, Rewritten(plain, 0, {}));
}

TEST(DialogTemplateTest, GetsStylesAndFontTogether) {
    const Bytes before = Builder().Plain(kStyle).NoNames().Text(L"").Items();
    const Bytes after = Builder()
                            .Plain(kStyle | kSetFont | 0x400000)
                            .NoNames()
                            .Text(L"")
                            .Word(9)
                            .Text(L"A")
                            .Items();
    EXPECT_EQ(after, Rewritten(before, 0x400000, TemplateFont{L"A", 9}));
}

TEST(DialogTemplateTest, MayHaveTheMessageFontWhichHasNoFace) {
    const Bytes before =
        Builder().Plain(kStyle | kSetFont).NoNames().Text(L"T").Word(0x7FFF).Items();
    const Bytes after =
        Builder().Plain(kStyle | kSetFont).NoNames().Text(L"T").Word(9).Text(L"Face").Items();
    EXPECT_EQ(after, Rewritten(before, 0, TemplateFont{L"Face", 9}));
}

TEST(DialogTemplateTest, NeverAnnouncesAFontThatItHasNot) {
    const Bytes plain = Builder().Plain(kStyle).NoNames().Text(L"T").Items();
    EXPECT_EQ(plain, Rewritten(plain, kSetFont, {}));
}

TEST(DialogTemplateTest, MayHaveNoItems) {
    const Bytes before =
        Builder().Plain(kStyle | kSetFont, 0).NoNames().Text(L"T").Word(8).Text(L"Ab");
    const Bytes after =
        Builder().Plain(kStyle | kSetFont, 0).NoNames().Text(L"T").Word(9).Text(L"Face").Align();
    EXPECT_EQ(after, Rewritten(before, 0, TemplateFont{L"Face", 9}));
}

// Each cut is in memory of its own, of exactly that size, so that the sanitizer sees a byte too
// many.
TEST(DialogTemplateTest, IsNeverReadPastItsEnd) {
    const Bytes plain = Builder()
                            .Plain(kStyle | kSetFont)
                            .Word(0xFFFF)
                            .Word(5)
                            .Text(L"C")
                            .Text(L"T")
                            .Word(8)
                            .Text(L"Face");
    const Bytes extended =
        Builder().Extended(kStyle | kSetFont).NoNames().Text(L"T").Word(8).Long(0).Text(L"Face");
    for (const Bytes& whole : {plain, extended}) {
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            const auto cut = std::make_unique<std::byte[]>(length);
            std::copy_n(whole.begin(), length, cut.get());
            const auto written = RewriteTemplate(std::span<const std::byte>(cut.get(), length), 0,
                                                 TemplateFont{L"Other", 9});
            EXPECT_EQ(length == whole.size(), written.has_value()) << length;
        }
    }
}

} // namespace
