// Where a block of text may end: no character is cut in two.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "ObLibX/src/xml/encoding/SystemCalls.h"
#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"

namespace {

using obtest::DecodePage;

// Bytes that go back, -1 when there is no boundary.
template <typename Unit>
std::int32_t Back(const std::wstring& encoding, const std::basic_string<Unit>& block) {
    ObLibX::TextConverter converter;
    converter.fromEncoding = encoding;
    converter.source = block.data();
    converter.sourceLength = static_cast<std::int32_t>(block.size());
    std::int32_t bytes = 12345;
    const bool found = ObLibX::FindCharBoundary(converter, bytes);
    if (!found) {
        EXPECT_EQ(bytes, 0);
        return -1;
    }
    return bytes;
}

TEST(Utf16Boundary, GivesBackALastSurrogateOfEitherKind) {
    for (const char16_t last : {0xD800, 0xD83D, 0xDBFF, 0xDC00, 0xDE00, 0xDFFF}) {
        EXPECT_EQ(Back(L"UTF-16", std::u16string{u'a', last}), 2);
    }
    EXPECT_EQ(Back(L"UTF-16", std::u16string(1, char16_t{0xD83D})), 2);
}

TEST(Utf16Boundary, GivesNothingBackAfterAnyOtherUnit) {
    for (const char16_t last : {0x0000, 0x0041, 0xD7FF, 0xE000, 0xFFFF}) {
        EXPECT_EQ(Back(L"UTF-16", std::u16string{0xD83D, last}), 0);
    }
}

TEST(Utf8Boundary, GivesNothingBackAfterAWholeCharacter) {
    for (const char* text : {"a", "ab", "\xC3\xA9", "a\xC3\xBF", "\xE2\x82\xAC", "a\xE4\xBF\xBF",
                             "\xF0\x9F\x98\x80", "a\xF4\x8F\xBF\xBF", "\x7F"}) {
        EXPECT_EQ(Back(L"UTF-8", std::string(text)), 0) << text;
    }
}

TEST(Utf8Boundary, GivesACutSequenceBackWholeWhateverItsLength) {
    EXPECT_EQ(Back(L"UTF-8", std::string("a\xC3")), 1);
    EXPECT_EQ(Back(L"UTF-8", std::string("a\xE2")), 1);
    EXPECT_EQ(Back(L"UTF-8", std::string("a\xE2\x82")), 2);
    EXPECT_EQ(Back(L"UTF-8", std::string("a\xF0")), 1);
    EXPECT_EQ(Back(L"UTF-8", std::string("a\xF0\x9F")), 2);
    // The forgiving decoder alone would read 9F 98 as a character.
    EXPECT_EQ(Back(L"UTF-8", std::string("a\xF0\x9F\x98")), 3);
    EXPECT_EQ(Back(L"utf-8", std::string("\xC3\xA9\xF0\x9F\x98")), 3);
}

TEST(Utf8Boundary, NeverCutsACharacterWhereverTheBlockEnds) {
    const std::string text = "x\xC3\xA9\xC2\x80\xE2\x82\xAC\xEF\xBF\xBF\xE0\xA0\x80\xF0\x9F\x98\x80"
                             "\xF0\x90\x80\x80\xF4\x8F\xBF\xBFz";
    for (std::size_t end = 1; end <= text.size(); ++end) {
        const std::int32_t back = Back(L"UTF-8", text.substr(0, end));
        ASSERT_GE(back, 0) << end;
        const std::size_t split = end - static_cast<std::size_t>(back);
        const bool starts =
            split == text.size() || (static_cast<unsigned char>(text[split]) & 0xC0) != 0x80;
        EXPECT_TRUE(starts) << end;
        EXPECT_LE(back, 3) << end;
    }
}

TEST(Utf8Boundary, GivesBackTheBytesAfterTheLastReadableCharacter) {
    EXPECT_EQ(Back(L"UTF-8", std::string("ab\xFF")), 1);
    EXPECT_EQ(Back(L"UTF-8", std::string("ab\xFF\xFE\xF8\xFF\xFF")), 5);
    EXPECT_EQ(Back(L"UTF-8", std::string("ab\x85\x81")), 0); // a stray byte leads a sequence
}

TEST(Utf8Boundary, IsNotThereWhenNoCharacterCanBeRead) {
    EXPECT_EQ(Back(L"UTF-8", std::string("\xFF\xFF\xFF")), -1);
    EXPECT_EQ(Back(L"UTF-8", std::string("\xF0\x9F\x98")), -1);
    EXPECT_EQ(Back(L"UTF-8", std::string("\xC3")), -1);
}

TEST(PageBoundary, GivesNothingBackInAPageOfSingleBytes) {
    for (const wchar_t* encoding : {L"windows-1252", L"koi8-r", L"iso-8859-5", L"ibm437", L"utf-7",
                                    L"x-iscii-de", L"UTF-16BE"}) {
        EXPECT_EQ(Back(encoding, std::string("\x82\xA0\x82")), 0);
    }
    EXPECT_EQ(Back(L"UTF-32", std::u32string(U"\U0001F600")), 0);
}

TEST(PageBoundary, GivesNothingBackOfAnEmptyBlock) {
    for (const wchar_t* encoding : {L"UTF-8", L"UTF-16", L"shift_jis", L""}) {
        EXPECT_EQ(Back(encoding, std::string()), 0);
    }
}

TEST(PageBoundary, TakesTheSystemsPageForAnEmptyNameAndForAnUnknownOne) {
    const std::int32_t expected = ObLibX::SystemCodePage() == 65001 ? 1 : 0;
    if (ObLibX::SystemCodePage() != 1252 && ObLibX::SystemCodePage() != 65001) {
        GTEST_SKIP() << "the system's page is " << ObLibX::SystemCodePage()
                     << "; encodings_fake_system_test sets it";
    }
    EXPECT_EQ(Back(L"", std::string("abcdefgh\xE2")), expected);
    EXPECT_EQ(Back(L"no such name", std::string("abcdefgh\xE2")), expected);
}

struct DoubleBytePage {
    std::uint32_t page;
    const wchar_t* name;
    std::vector<std::string> characters;
};

const DoubleBytePage kDoubleBytePages[] = {
    // Trail bytes that are leads or letters elsewhere are among them.
    {932,
     L"Shift_JIS",
     {"a", "\\", "\x82\xA0", "\x83\x5C", "\x83\x83", "\x95\x5C", "\xB1", "\xE0\x81"}},
    {936, L"gbk", {"a", "\xC4\xE3", "\xBA\xC3", "\x81\x40", "\xD2\xBB", "\xB0\xA1"}},
    {949, L"korean", {"a", "\xB0\xA1", "\xC7\xD1", "\xB1\xDB", "\x81\x41"}},
    {950, L"big5", {"a", "\xA4\x40", "\xA4\xA4", "\xA4\xE5", "\xB3\x5C", "\xA5\xA5"}},
};

std::string RandomText(const DoubleBytePage& page, std::size_t characters, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::string text;
    for (std::size_t i = 0; i < characters; ++i) {
        text += page.characters[random() % page.characters.size()];
    }
    return text;
}

TEST(PageBoundary, NeverCutsACharacterOfADoubleBytePage) {
    int tried = 0;
    for (const DoubleBytePage& page : kDoubleBytePages) {
        if (!obtest::HasPage(page.page)) {
            std::printf("no code page %u here: left out\n", page.page);
            continue;
        }
        for (std::uint32_t seed = 1; seed <= 20; ++seed) {
            const std::string text = RandomText(page, 60, seed);
            const std::u16string whole = DecodePage(page.page, text);
            for (std::size_t end = 20; end <= text.size(); ++end) {
                const std::int32_t back = Back(page.name, text.substr(0, end));
                if (back < 0) {
                    continue; // counted below
                }
                ASSERT_LT(back, 40);
                const std::size_t split = end - static_cast<std::size_t>(back);
                ASSERT_EQ(DecodePage(page.page, text.substr(0, split)) +
                              DecodePage(page.page, text.substr(split)),
                          whole)
                    << "page " << page.page << " seed " << seed << " end " << end;
                ++tried;
            }
        }
    }
    if (tried == 0) {
        GTEST_SKIP() << "no double-byte page here; encodings_fake_system_test has one";
    }
}

TEST(PageBoundary, IsFoundInAnyOrdinaryTextOfADoubleBytePage) {
    for (const DoubleBytePage& page : kDoubleBytePages) {
        if (!obtest::HasPage(page.page)) {
            std::printf("no code page %u here: left out\n", page.page);
            continue;
        }
        for (std::uint32_t seed = 100; seed < 120; ++seed) {
            const std::string text = RandomText(page, 200, seed);
            for (std::size_t end = 41; end <= text.size(); end += 7) {
                EXPECT_GE(Back(page.name, text.substr(0, end)), 1)
                    << "page " << page.page << " seed " << seed << " end " << end;
            }
        }
    }
}

TEST(PageBoundary, IsNotThereForAListedPageThatTheSystemLacks) {
    if (obtest::HasPage(52936)) {
        GTEST_SKIP() << "this system has page 52936; encodings_fake_system_test lacks one";
    }
    EXPECT_EQ(Back(L"hz-gb-2312", std::string(100, 'a')), -1);
}

} // namespace
