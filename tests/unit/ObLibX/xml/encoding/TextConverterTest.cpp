// Every pair of the conversion table, with its oddities.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"

namespace {

using ObLibX::TextConverter;

template <typename From>
TextConverter Over(const std::wstring& fromEncoding, const std::basic_string<From>& text) {
    TextConverter converter;
    converter.fromEncoding = fromEncoding;
    converter.source = text.data();
    converter.sourceLength = static_cast<std::int32_t>(text.size());
    return converter;
}

// It would be gone before the conversion.
template <typename From>
TextConverter Over(const std::wstring&, std::basic_string<From>&&) = delete;

// Counts, converts into exactly that many units with guards after them, and compares the lengths.
template <typename To, typename From>
std::basic_string<To> Convert(const std::wstring& fromEncoding, const std::basic_string<From>& text,
                              const std::wstring& toEncoding) {
    TextConverter converter = Over(fromEncoding, text);
    const std::int32_t count = converter.Convert(nullptr, toEncoding);
    EXPECT_EQ(converter.destinationCapacity, count);
    const To guard = static_cast<To>(0x5A);
    std::basic_string<To> out(static_cast<std::size_t>(count) + 4, guard);
    if (count > 0) {
        EXPECT_EQ(converter.Convert(out.data(), toEncoding), count);
        EXPECT_EQ(converter.destinationCapacity, count);
    }
    for (std::size_t i = static_cast<std::size_t>(count); i < out.size(); ++i) {
        EXPECT_EQ(out[i], guard) << "written past the end";
    }
    out.resize(static_cast<std::size_t>(count));
    return out;
}

#define SKIP_WITHOUT_PAGE(page)                                                                    \
    if (!obtest::HasPage(page)) {                                                                  \
        GTEST_SKIP() << "this system has no code page " << page                                    \
                     << "; encodings_fake_system_test checks this rule on a fake system";          \
    }

// Characters at each edge of the encodings' lengths.
const std::u32string kAllLengths = U"a\x7F\x80\x7FF\x800\xFFFD\xFFFF\U00010000\U0001F600\U0010FFFF";

TEST(TextConverter, EncodesUtf32AsUtf8WithOneToFourBytesByTheValue) {
    EXPECT_EQ(Convert<char>(L"UTF-32", kAllLengths, L"UTF-8"),
              "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xEF\xBF\xBF\xF0\x90\x80\x80"
              "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF");
    const std::u32string lone = {0xD800, 0xDFFF};
    EXPECT_EQ(Convert<char>(L"UTF-32", lone, L"UTF-8"), "\xED\xA0\x80\xED\xBF\xBF");
    const std::u32string beyond = {0x1FFFFF, 0x110000};
    EXPECT_EQ(Convert<char>(L"UTF-32", beyond, L"UTF-8"), "\xF7\xBF\xBF\xBF\xF4\x90\x80\x80");
    const std::u32string most = {0xFFFFFFFF};
    EXPECT_EQ(Convert<char>(L"UTF-32", most, L"UTF-8"), "\xF7\xBF\xBF\xBF");
}

TEST(TextConverter, EncodesUtf32AsUtf16WithPairsFrom10000On) {
    EXPECT_EQ(Convert<char16_t>(L"UTF-32", kAllLengths, L"UTF-16"),
              u"a\x7F\x80\x7FF\x800\xFFFD\xFFFF\xD800\xDC00\xD83D\xDE00\xDBFF\xDFFF");
    const std::u32string lone = {0xD83D, 0x41};
    EXPECT_EQ(Convert<char16_t>(L"UTF-32LE", lone, L"utf-16le"), (std::u16string{0xD83D, 0x41}));
}

TEST(TextConverter, MakesNothingOfUtf32ForAnyOtherEncoding) {
    for (const wchar_t* to : {L"windows-1252", L"UTF-32", L"", L"utf-7", L"no such name"}) {
        TextConverter converter = Over(L"UTF-32", kAllLengths);
        char place[8] = "1234567";
        converter.destinationCapacity = 7;
        EXPECT_EQ(converter.Convert(place, to), 0);
        EXPECT_EQ(converter.destinationCapacity, 0);
        EXPECT_STREQ(place, "1234567");
    }
}

TEST(TextConverter, DecodesUtf16AsUtf32) {
    const std::u16string text =
        u"a\x7F\x80\x7FF\x800\xFFFD\xFFFF\xD800\xDC00\xD83D\xDE00\xDBFF\xDFFF";
    EXPECT_EQ(Convert<char32_t>(L"UTF-16", text, L"UTF-32"), kAllLengths);
}

TEST(TextConverter, JoinsAHighSurrogateWithWhateverFollows) {
    const std::u16string letter = {0xD83D, u'A', u'B'};
    EXPECT_EQ(Convert<char32_t>(L"UTF-16", letter, L"UTF-32"),
              (std::u32string{0x10000 + (0x3D << 10) + 0x41, U'B'}));
    const std::u16string twoHigh = {0xD800, 0xD801, u'B'};
    EXPECT_EQ(Convert<char32_t>(L"UTF-16", twoHigh, L"UTF-32"), (std::u32string{0x10001, U'B'}));
}

TEST(TextConverter, ReplacesAHighSurrogateAtTheEndOrBeforeANulByAQuestionMark) {
    const std::u16string atEnd = {u'a', 0xD83D};
    EXPECT_EQ(Convert<char32_t>(L"UTF-16", atEnd, L"UTF-32"), U"a?");
    const std::u16string beforeNul = {0xDBFF, 0, u'b'};
    EXPECT_EQ(Convert<char32_t>(L"UTF-16", beforeNul, L"UTF-32"), (std::u32string{U'?', 0, U'b'}));
}

TEST(TextConverter, KeepsALowSurrogateWithoutAHighOne) {
    const std::u16string low = {0xDC00, u'x', 0xDFFF};
    EXPECT_EQ(Convert<char32_t>(L"UTF-16", low, L"UTF-32"), (std::u32string{0xDC00, U'x', 0xDFFF}));
}

TEST(TextConverter, DecodesUtf8AsUtf32) {
    const std::string utf8 = Convert<char>(L"UTF-32", kAllLengths, L"UTF-8");
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", utf8, L"UTF-32"), kAllLengths);
}

TEST(TextConverter, TakesAStrayContinuationByteForALead) {
    // 0x80 to 0x9F have bit 5 clear: two bytes.
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string("\x85\x81"), L"UTF-32"),
              (std::u32string{5 << 6 | 1}));
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string("\x9F\xBFz"), L"UTF-32"),
              (std::u32string{0x7FF, U'z'}));
    // 0xA0 to 0xAF have bit 5 set and bit 4 clear: three. 0xB0 to 0xB7 have bit 3 clear: four.
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string("\xA2\x81\x81"), L"UTF-32"),
              (std::u32string{2 << 12 | 1 << 6 | 1}));
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string("\xB1\x81\x81\x81"), L"UTF-32"),
              (std::u32string{1 << 18 | 1 << 12 | 1 << 6 | 1}));
}

TEST(TextConverter, TestsContinuationBytesForTheTopBitOnly) {
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string("\xC3\xE9"), L"UTF-32"),
              (std::u32string{3 << 6 | 0x29}));
    EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string("\xE2\xFF\xC0"), L"UTF-32"),
              (std::u32string{2 << 12 | 0x3F << 6}));
}

TEST(TextConverter, ReplacesABadUtf8SequenceByOneQuestionMark) {
    struct Case {
        const char* bytes;
        const char32_t* text;
    };
    for (const Case& each : {
             Case{"a\xC3z", U"a?z"},       // no continuation
             Case{"a\xE2\x82z", U"a?z"},   // one lacks
             Case{"\xF0\x9F\x98z", U"?z"}, // one lacks
             Case{"\xF8z", U"?z"},         // no lead at all
             Case{"\xFF\xFEz", U"??z"},    // two of them
             Case{"\xB8z", U"?z"},         // a stray one with bits 5, 4 and 3
             Case{"a\xC3", U"a?"},         // cut by the end
             Case{"a\xE2\x82", U"a?"},     // the same
             Case{"a\xF0\x9F\x98", U"a?"}, // the same
         }) {
        EXPECT_EQ(Convert<char32_t>(L"UTF-8", std::string(each.bytes), L"UTF-32"), each.text);
    }
}

TEST(TextConverter, ReadsEveryUtf8ValueUpToTheLast) {
    for (const std::uint32_t value :
         {0u, 0x7Fu, 0x80u, 0x7FFu, 0x800u, 0xFFFFu, 0x10000u, 0x1FFFFFu}) {
        const std::u32string text(1, static_cast<char32_t>(value));
        const std::string bytes = Convert<char>(L"UTF-32", text, L"UTF-8");
        EXPECT_EQ(Convert<char32_t>(L"UTF-8", bytes, L"UTF-32"), text) << value;
    }
}

TEST(TextConverter, ReadsTextAtAnyAddress) {
    std::string memory = "x....";
    const char32_t value = U'\x20AC';
    std::memcpy(memory.data() + 1, &value, sizeof value);
    TextConverter converter;
    converter.fromEncoding = L"UTF-32";
    converter.source = memory.data() + 1;
    converter.sourceLength = 1;
    std::string place(4, ' ');
    converter.destinationCapacity = 3;
    EXPECT_EQ(converter.Convert(place.data() + 1, L"UTF-8"), 3);
    EXPECT_EQ(place, " \xE2\x82\xAC");
}

TEST(TextConverter, StopsItsOwnConversionsAfterTheLastCharacterThatFits) {
    const std::u32string text = U"a\x20AC\U0001F600z";
    for (std::int32_t capacity = 1; capacity <= 10; ++capacity) {
        TextConverter converter = Over(L"UTF-32", text);
        std::string place(12, '#');
        converter.destinationCapacity = capacity;
        const std::int32_t fitting = capacity >= 9 ? 9 : capacity == 8 ? 8 : capacity >= 4 ? 4 : 1;
        EXPECT_EQ(converter.Convert(place.data(), L"UTF-8"), fitting);
        EXPECT_EQ(converter.destinationCapacity, fitting);
        EXPECT_EQ(place.find_first_not_of('#', static_cast<std::size_t>(fitting)),
                  std::string::npos);
    }
    const std::u32string smile(U"\U0001F600");
    TextConverter pair = Over(L"UTF-32", smile);
    char16_t unit = u'#';
    pair.destinationCapacity = 1;
    EXPECT_EQ(pair.Convert(&unit, L"UTF-16"), 0);
    EXPECT_EQ(unit, u'#');
}

TEST(TextConverter, OnlyCountsWithoutACapacity) {
    const std::u32string text = U"a\x20AC";
    for (const std::int32_t capacity : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        TextConverter converter = Over(L"UTF-32", text);
        char place = '#';
        converter.destinationCapacity = capacity;
        EXPECT_EQ(converter.Convert(&place, L"UTF-8"), 4);
        EXPECT_EQ(place, '#');
    }
    // The capacity counts for nothing when there is no destination.
    TextConverter converter = Over(L"UTF-32", text);
    converter.destinationCapacity = 1;
    EXPECT_EQ(converter.Convert(nullptr, L"UTF-8"), 4);
}

TEST(TextConverter, MakesNothingOfNothing) {
    for (const wchar_t* from : {L"UTF-8", L"UTF-16", L"UTF-32", L"windows-1252", L""}) {
        for (const wchar_t* to : {L"UTF-8", L"UTF-16", L"UTF-32", L"windows-1252", L""}) {
            TextConverter none;
            none.fromEncoding = from;
            none.destinationCapacity = 4;
            char place[16] = "unchanged";
            EXPECT_EQ(none.Convert(place, to), 0);
            none.source = "text";
            none.destinationCapacity = 4;
            EXPECT_EQ(none.Convert(place, to), 0);
            // The system would take -1 for a text up to its NUL.
            none.sourceLength = -1;
            none.destinationCapacity = 4;
            EXPECT_EQ(none.Convert(place, to), 0);
            EXPECT_STREQ(place, "unchanged");
        }
    }
}

TEST(TextConverter, CopiesUtf16ToUtf16) {
    const std::u16string text = {u'a', 0xD83D, u'b'};
    EXPECT_EQ(Convert<char16_t>(L"utf-16", text, L"UCS-2"), text);
    TextConverter converter = Over(L"UTF-16", text);
    char16_t place[3] = {u'#', u'#', u'#'};
    converter.destinationCapacity = 2;
    EXPECT_EQ(converter.Convert(place, L"UTF-16"), 2);
    EXPECT_EQ(place[2], u'#');
}

TEST(TextConverter, ConvertsUtf16AndUtf8ThroughTheSystem) {
    const std::u16string text = u"a\x20AC\xD83D\xDE00";
    const std::string utf8 = "a\xE2\x82\xAC\xF0\x9F\x98\x80";
    EXPECT_EQ(Convert<char>(L"UTF-16", text, L"UTF-8"), utf8);
    EXPECT_EQ(Convert<char16_t>(L"UTF-8", utf8, L"UTF-16"), text);
}

TEST(TextConverter, NeverAsksForUsedDefaultOfUtf8) {
    // The system refuses the whole conversion when it is asked.
    const std::u16string euro(u"\x20AC");
    TextConverter converter = Over(L"UTF-16", euro);
    converter.usedDefault = 7;
    EXPECT_EQ(converter.Convert(nullptr, L"UTF-8"), 3);
    EXPECT_EQ(converter.usedDefault, 0);
}

TEST(TextConverter, ConvertsASingleBytePageBothWays) {
    SKIP_WITHOUT_PAGE(1252);
    EXPECT_EQ(Convert<char16_t>(L"windows-1252", std::string("\x80 \xE9"), L"UTF-16"),
              u"\x20AC \xE9");
    EXPECT_EQ(Convert<char>(L"UTF-16", std::u16string(u"\x20AC \xE9"), L"windows-1252"),
              "\x80 \xE9");
}

TEST(TextConverter, ReportsThatACharacterHadToBeReplaced) {
    SKIP_WITHOUT_PAGE(1252);
    const std::u16string text(u"a\x3042");
    TextConverter lost = Over(L"UTF-16", text);
    char place[4] = "###";
    lost.destinationCapacity = 3;
    EXPECT_EQ(lost.Convert(place, L"windows-1252"), 2);
    EXPECT_STREQ(place, "a?#");
    EXPECT_NE(lost.usedDefault, 0);
    lost.sourceLength = 1;
    lost.Convert(nullptr, L"windows-1252");
    EXPECT_EQ(lost.usedDefault, 0);
}

TEST(TextConverter, TakesAnUnknownNameForTheSystemsDefault) {
    const std::string text = "plain \xE9";
    const std::u16string system = Convert<char16_t>(L"", text, L"UTF-16");
    EXPECT_EQ(system.substr(0, 6), u"plain ");
    EXPECT_EQ(Convert<char16_t>(L"no such name", text, L"UTF-16"), system);
    EXPECT_EQ(Convert<char16_t>(L"iso-2022-jp", text, L"UTF-16"), system);
    EXPECT_EQ(Convert<char>(L"UTF-16", std::u16string(u"plain"), L"no such name"), "plain");
}

TEST(TextConverter, ConvertsFromPageToPageThroughUtf16) {
    SKIP_WITHOUT_PAGE(1252);
    EXPECT_EQ(Convert<char>(L"windows-1252", std::string("\x80\xE9"), L"UTF-8"),
              "\xE2\x82\xAC\xC3\xA9");
    EXPECT_EQ(Convert<char>(L"UTF-8", std::string("\xE2\x82\xAC\xC3\xA9"), L"windows-1252"),
              "\x80\xE9");
    EXPECT_EQ(Convert<char>(L"UTF-8", std::string("\xC3\xA9"), L"UTF-8"), "\xC3\xA9");
}

TEST(TextConverter, ReportsAReplacedCharacterFromPageToPageToo) {
    SKIP_WITHOUT_PAGE(1252);
    const std::string text("\xE3\x81\x82");
    TextConverter lost = Over(L"UTF-8", text);
    EXPECT_EQ(lost.Convert(nullptr, L"windows-1252"), 1);
    EXPECT_NE(lost.usedDefault, 0);
}

TEST(TextConverter, ConvertsADoubleBytePage) {
    SKIP_WITHOUT_PAGE(932);
    const std::string bytes = "a\x82\xA0\x83\x5C z";
    EXPECT_EQ(Convert<char16_t>(L"Shift_JIS", bytes, L"UTF-16"), u"a\x3042\x30BD z");
    EXPECT_EQ(Convert<char>(L"UTF-16", std::u16string(u"a\x3042\x30BD z"), L"Shift_JIS"), bytes);
    EXPECT_EQ(Convert<char>(L"Shift_JIS", bytes, L"UTF-8"), "a\xE3\x81\x82\xE3\x82\xBD z");
}

TEST(TextConverter, MakesNothingOfAnyOtherPageForUtf32) {
    for (const wchar_t* from : {L"windows-1252", L"Shift_JIS", L"", L"no such name", L"utf-7"}) {
        char32_t place = U'#';
        const std::string text("text");
        TextConverter converter = Over(from, text);
        converter.destinationCapacity = 1;
        EXPECT_EQ(converter.Convert(&place, L"UTF-32"), 0);
        EXPECT_EQ(place, U'#');
    }
}

TEST(TextConverter, GivesNothingForAPageThatTheSystemLacks) {
    if (obtest::HasPage(57002)) {
        GTEST_SKIP()
            << "this system has page 57002; encodings_fake_system_test has one that hasn't";
    }
    const std::string text("text");
    TextConverter converter = Over(L"x-iscii-de", text);
    EXPECT_EQ(converter.Convert(nullptr, L"UTF-16"), 0);
    const std::u16string wide(u"text");
    TextConverter back = Over(L"UTF-16", wide);
    char place[8] = "unused";
    back.destinationCapacity = 7;
    EXPECT_EQ(back.Convert(place, L"x-iscii-de"), 0);
    EXPECT_EQ(back.usedDefault, 0);
}

TEST(TextConverter, NeverWritesOverTheCapacityInTheSystemsConversions) {
    SKIP_WITHOUT_PAGE(1252);
    const std::u16string text = u"abcdef";
    for (std::int32_t capacity = 1; capacity <= 7; ++capacity) {
        TextConverter converter = Over(L"UTF-16", text);
        std::string place(10, '#');
        converter.destinationCapacity = capacity;
        // With one byte too few the text comes without its last one; with fewer there is nothing.
        const std::int32_t expected = capacity >= 6 ? 6 : capacity == 5 ? 5 : 0;
        EXPECT_EQ(converter.Convert(place.data(), L"windows-1252"), expected);
        EXPECT_EQ(place.find_first_not_of('#', static_cast<std::size_t>(capacity)),
                  std::string::npos);
        if (expected > 0) {
            EXPECT_EQ(place.substr(0, 5), "abcde");
        }
    }
}

TEST(TextConverter, KeepsTheNameThatItConvertedTo) {
    TextConverter converter = Over(L"UTF-32", kAllLengths);
    converter.Convert(nullptr, L"UTF-8");
    EXPECT_EQ(converter.toEncoding, L"UTF-8");
    EXPECT_EQ(converter.Convert(nullptr, converter.toEncoding), 27);
}

TEST(Utf8Sequence, DistinguishesACutSequenceFromABadOne) {
    using Kind = ObLibX::Utf8Sequence::Kind;
    const auto kind = [](const char* bytes, std::int32_t left) {
        return ObLibX::ReadUtf8(reinterpret_cast<const std::uint8_t*>(bytes), left).kind;
    };
    EXPECT_EQ(kind("\xE2\x82\xAC", 3), Kind::Whole);
    EXPECT_EQ(kind("\xE2\x82\xAC", 2), Kind::Cut);
    EXPECT_EQ(kind("\xE2\x82\xAC", 1), Kind::Cut);
    EXPECT_EQ(kind("\xE2z", 2), Kind::Bad);
    EXPECT_EQ(kind("\xE2\0", 2), Kind::Bad);
    EXPECT_EQ(kind("\xFF", 1), Kind::Bad);
    EXPECT_EQ(kind("\0", 1), Kind::Whole);
}

} // namespace
