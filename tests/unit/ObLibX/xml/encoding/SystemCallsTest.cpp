// The calls of the converter and of the boundary search to the system, on a fake one.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/names/NameTables.h"
#include "tests/unit/ObLibX/xml/encoding/CodePages.h"
#include "tests/unit/ObLibX/xml/encoding/FakeSystem.h"

namespace {

using ObLibX::TextConverter;
using obtest::g_system;

class SystemCalls : public testing::Test {
protected:
    SystemCalls() { g_system = {}; }

    static TextConverter FromWide(const std::wstring& text) {
        TextConverter converter;
        converter.fromEncoding = L"UTF-16";
        converter.source = text.data();
        converter.sourceLength = static_cast<std::int32_t>(text.size());
        return converter;
    }

    static TextConverter FromWide(std::wstring&&) = delete; // gone before the conversion

    static std::int32_t Back(const std::wstring& encoding, const std::string& block) {
        TextConverter converter;
        converter.fromEncoding = encoding;
        converter.source = block.data();
        converter.sourceLength = static_cast<std::int32_t>(block.size());
        std::int32_t bytes = 0;
        return ObLibX::FindCharBoundary(converter, bytes) ? bytes : -1;
    }
};

struct ForbiddenPage {
    const wchar_t* name;
    std::uint32_t page;
};
// Every page of the list that has a name. 50229 has none; it is reached as the system's own.
constexpr ForbiddenPage kForbidden[] = {
    {L"utf-7", 65000},       {L"utf-8", 65001},      {L"csiso2022jp", 50221},
    {L"csiso2022kr", 50225}, {L"x-cp50227", 50227},  {L"hz-gb-2312", 52936},
    {L"gb18030", 54936},     {L"x-iscii-de", 57002}, {L"x-iscii-be", 57003},
    {L"x-iscii-ta", 57004},  {L"x-iscii-te", 57005}, {L"x-iscii-as", 57006},
    {L"x-iscii-or", 57007},  {L"x-iscii-ka", 57008}, {L"x-iscii-ma", 57009},
    {L"x-iscii-gu", 57010},  {L"x-iscii-pa", 57011}};

TEST_F(SystemCalls, DoNotAskForUsedDefaultWhereThePageForbidsIt) {
    const std::wstring text = L"\x3042";
    for (const ForbiddenPage& forbidden : kForbidden) {
        g_system = {};
        g_system.singleBytePages = {forbidden.page};
        TextConverter converter = FromWide(text);
        EXPECT_EQ(converter.Convert(nullptr, forbidden.name), 1) << forbidden.page;
        ASSERT_EQ(g_system.fromWide.size(), 1u);
        EXPECT_EQ(g_system.fromWide[0].page, forbidden.page);
        EXPECT_FALSE(g_system.fromWide[0].askedForUsedDefault) << forbidden.page;
        EXPECT_EQ(converter.usedDefault, 0);
    }
}

TEST_F(SystemCalls, DoNotAskForUsedDefaultWhereTheSystemsOwnPageForbidsIt) {
    const std::wstring text = L"\x3042";
    for (const std::uint32_t page : {50220u, 50222u, 50229u, 65001u}) {
        g_system = {};
        g_system.codePage = page;
        g_system.singleBytePages = {page};
        TextConverter converter = FromWide(text);
        converter.Convert(nullptr, L"");
        EXPECT_EQ(g_system.fromWide.at(0).page, 0u);
        EXPECT_FALSE(g_system.fromWide.at(0).askedForUsedDefault) << page;
    }
}

TEST_F(SystemCalls, AskForUsedDefaultElsewhere) {
    const std::wstring text = L"\x3042";
    for (const ForbiddenPage& other :
         {ForbiddenPage{L"windows-1252", 1252}, ForbiddenPage{L"shift_jis", 932},
          ForbiddenPage{L"x-cp20949", 20949}, ForbiddenPage{L"euc-kr", 51949}}) {
        g_system = {};
        g_system.singleBytePages = {other.page};
        TextConverter converter = FromWide(text);
        EXPECT_EQ(converter.Convert(nullptr, other.name), 1);
        EXPECT_TRUE(g_system.fromWide.at(0).askedForUsedDefault) << other.page;
        EXPECT_EQ(converter.usedDefault, 1);
    }
}

TEST_F(SystemCalls, GrantOneByteMoreThanTheCapacityAndKeepToItAllTheSame) {
    const std::wstring text = L"abcde";
    TextConverter converter = FromWide(text);
    std::string place(8, '#');
    converter.destinationCapacity = 4;
    EXPECT_EQ(converter.Convert(place.data(), L"windows-1252"), 4);
    EXPECT_EQ(g_system.fromWide.back().capacity, 5);
    EXPECT_EQ(place, "abcd####");
    converter.destinationCapacity = 3;
    EXPECT_EQ(converter.Convert(place.data(), L"windows-1252"), 0);
    EXPECT_EQ(place.substr(4), "####");
}

TEST_F(SystemCalls, NameNoCapacityWhenTheyCount) {
    const std::wstring text = L"abcde";
    TextConverter converter = FromWide(text);
    converter.destinationCapacity = 100;
    EXPECT_EQ(converter.Convert(nullptr, L"windows-1252"), 5);
    EXPECT_EQ(g_system.fromWide.at(0).capacity, 0);
}

TEST_F(SystemCalls, GoFromPageToPageThroughAsManyUnitsAsTheSourceHas) {
    TextConverter converter;
    converter.fromEncoding = L"windows-1252";
    converter.source = "abc";
    converter.sourceLength = 3;
    char place[4] = "###";
    converter.destinationCapacity = 3;
    EXPECT_EQ(converter.Convert(place, L"UTF-8"), 3);
    EXPECT_STREQ(place, "abc");
    EXPECT_EQ(g_system.longestToWide, 3);
    EXPECT_EQ(g_system.toWideCalls, 1);
}

TEST_F(SystemCalls, AreNotMadeForTheConversionsOfThisLibrary) {
    const std::u32string text = U"a\x20AC";
    TextConverter converter;
    converter.fromEncoding = L"UTF-32";
    converter.source = text.data();
    converter.sourceLength = 2;
    for (const wchar_t* to : {L"UTF-8", L"UTF-16", L"UTF-32", L"windows-1252"}) {
        converter.Convert(nullptr, to);
    }
    EXPECT_EQ(g_system.toWideCalls, 0);
    EXPECT_TRUE(g_system.fromWide.empty());
}

TEST_F(SystemCalls, AreNotMadeToFindTheBoundaryOfASingleBytePage) {
    for (const wchar_t* encoding :
         {L"windows-1252", L"koi8-r", L"x-iscii-de", L"utf-7", L"UTF-8"}) {
        EXPECT_EQ(Back(encoding, "abc"), 0);
    }
    EXPECT_EQ(g_system.toWideCalls, 0);
}

// Every page of the list that can be named, and none between them.
TEST_F(SystemCalls, FindABoundaryByTrialForThePagesOfTheListOnly) {
    const auto isListed = [](std::uint32_t page) {
        constexpr std::uint32_t list[] = {874,   932,   936,   949,   950,   1361,  10001, 10002,
                                          10003, 10008, 10021, 20000, 20001, 20002, 20003, 20004,
                                          20005, 20833, 20932, 20936, 20949, 50220, 50221, 50222,
                                          50225, 50227, 50930, 50931, 50933, 50935, 50937, 50939,
                                          51932, 51936, 51949, 52936, 54936};
        return std::find(std::begin(list), std::end(list), page) != std::end(list);
    };
    for (std::uint32_t page = 1; page <= 65535; ++page) {
        if (page == 65001) {
            continue;
        }
        g_system = {};
        g_system.codePage = page;
        Back(L"", "abc");
        ASSERT_EQ(g_system.toWideCalls > 0, isListed(page)) << page;
    }
}

TEST_F(SystemCalls, TakeTheSystemsPageForTheBoundaryOfAnUnnamedEncoding) {
    g_system.codePage = 65001;
    EXPECT_EQ(Back(L"", "abc\xE2\x82"), 2);
    EXPECT_EQ(Back(L"no such name", "abc\xE2\x82"), 2);
    g_system.codePage = 1252;
    EXPECT_EQ(Back(L"", "abc\xE2\x82"), 0);
}

TEST_F(SystemCalls, FindTheBoundaryOfAPageWithFourBytes) {
    const std::string characters[] = {"a",        "9",       "\x81\x30\x81\x30", "\x84\x31\xA4\x37",
                                      "\xB0\xA1", "\x81\x40"};
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        std::mt19937 random(seed);
        std::string text;
        for (int i = 0; i < 60; ++i) {
            text += characters[random() % std::size(characters)];
        }
        const std::u16string whole = obtest::DecodePage(54936, text);
        for (std::size_t end = 40; end <= text.size(); ++end) {
            const std::int32_t back = Back(L"gb18030", text.substr(0, end));
            ASSERT_GE(back, 1) << "seed " << seed << " end " << end;
            const std::size_t split = end - static_cast<std::size_t>(back);
            ASSERT_EQ(obtest::DecodePage(54936, text.substr(0, split)) +
                          obtest::DecodePage(54936, text.substr(split)),
                      whole)
                << "seed " << seed << " end " << end;
        }
    }
}

TEST_F(SystemCalls, TryNoMoreThan80UnitsAtATime) {
    Back(L"gb18030", std::string(40, 'a'));
    EXPECT_EQ(g_system.longestToWide, 80);
}

TEST_F(SystemCalls, WantThreeTailsThatAgree) {
    // All characters of one byte: 1, 2 and 3 agree, and the third is split after its first byte.
    g_system.codePage = 932;
    EXPECT_EQ(Back(L"", "abcd"), -1); // the fake has no page 932
    EXPECT_EQ(Back(L"csiso2022jp", "abcd"), 2);
    EXPECT_EQ(Back(L"csiso2022jp", "abc"), 2);
    EXPECT_EQ(Back(L"csiso2022jp", "ab"), -1);
    // Four bytes at most: at least three go back.
    EXPECT_EQ(Back(L"gb18030", "abcd"), 3);
    EXPECT_EQ(Back(L"gb18030", "abc"), -1);
}

TEST_F(SystemCalls, FindNoBoundaryWithin40BytesOfTwoByteMode) {
    std::string text = "\x1B$B";
    for (int i = 0; i < 40; ++i) {
        text += "$\"";
    }
    EXPECT_EQ(Back(L"csiso2022jp", text), -1);
    EXPECT_EQ(Back(L"csiso2022jp", "\x1B$B$\"$\"" + std::string("\x1B(B") + std::string(10, 'a')),
              2);
}

TEST_F(SystemCalls, FindTheBoundaryJustWithin40Bytes) {
    // From the escape sequence on the tail agrees: three tails are needed within 40 bytes.
    const std::string before = std::string("\x1B$B") + std::string(20, '!') + "\x1B(B";
    for (const std::size_t pairBytes : {20u, 33u, 34u, 35u, 36u, 37u, 60u}) {
        std::string tail = "\x1B$B";
        for (std::size_t i = 0; i < pairBytes; ++i) {
            tail += i % 2 == 0 ? '$' : '"';
        }
        const bool within = tail.size() + 2 <= 40;
        EXPECT_EQ(Back(L"csiso2022jp", "xyza" + tail) >= 0, within) << pairBytes;
    }
    EXPECT_GE(Back(L"csiso2022jp", before + "abc"), 1);
}

} // namespace
