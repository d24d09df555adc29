#include "services/archive/zip/FileNameRules.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using obarchive::CheckExtension;
using obarchive::CheckFileName;
using obarchive::CheckFilespec;
using obarchive::NameVerdict;

struct Row {
    std::wstring text;
    NameVerdict name;
    NameVerdict extension;
};

constexpr NameVerdict kYes = NameVerdict::Accepted;
constexpr NameVerdict kEmpty = NameVerdict::Empty;
constexpr NameVerdict kLong = NameVerdict::TooLong;
constexpr NameVerdict kChar = NameVerdict::ForbiddenCharacter;
constexpr NameVerdict kEnd = NameVerdict::BadEnd;
constexpr NameVerdict kDevice = NameVerdict::ReservedName;

const Row kRows[] = {
    {L"Ombrix Compressed Attachments", kYes, kEnd},
    {L"zip", kYes, kYes},
    {L"tar.gz", kYes, kYes},
    {L"", kEmpty, kEmpty},
    {L" ", kEnd, kEnd},
    {L".", kEnd, kEnd},
    {L"..", kEnd, kEnd},
    {L".zip", kYes, kEnd},
    {L"zip.", kEnd, kEnd},
    {L"zip ", kEnd, kEnd},
    {L" zip", kYes, kEnd},
    {L"z ip", kYes, kEnd},
    {L"a\\b", kChar, kChar},
    {L"a/b", kChar, kChar},
    {L"a:b", kChar, kChar},
    {L"a*b", kChar, kChar},
    {L"a?b", kChar, kChar},
    {L"a\"b", kChar, kChar},
    {L"a<b", kChar, kChar},
    {L"a>b", kChar, kChar},
    {L"a|b", kChar, kChar},
    {L"a\tb", kChar, kChar},
    {L"a\nb", kChar, kChar},
    {L"a\x1F", kChar, kChar},
    {L"a\x7F", kChar, kChar},
    {L"a\x85", kChar, kChar},
    {L"a;b,c=d+e[f]g", kYes, kYes},
    {L"\u00E4\u0308\U0001F600", kYes, kYes},
    {std::wstring(255, L'x'), kYes, kYes},
    {std::wstring(256, L'x'), kLong, kLong},
};

TEST(FileNameRulesTest, SeparatesNamesFromExtensions) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(CheckFileName(row.text.c_str()), row.name);
        EXPECT_EQ(CheckExtension(row.text.c_str()), row.extension);
    }
}

TEST(FileNameRulesTest, DevicesAreNoNames) {
    for (const wchar_t* name :
         {L"CON", L"con", L"Prn", L"AUX", L"NUL", L"nul.txt", L"CON.a.b", L"con .txt", L"CONIN$",
          L"conout$", L"COM1", L"com9.zip", L"LPT1", L"lpt9", L"COM\u00B9", L"LPT\u00B3.x"}) {
        EXPECT_EQ(CheckFileName(name), kDevice) << testing::PrintToString(std::wstring(name));
        EXPECT_NE(CheckFilespec(name, 2), kYes);
    }
}

TEST(FileNameRulesTest, NamesThatOnlyResembleDevicesAreNames) {
    for (const wchar_t* name : {L"CONSOLE", L"COM", L"COM0", L"COM10", L"LPT", L"LPT0", L"NULL",
                                L"my con", L"x.con", L".con", L"COM\u2074", L"aux-", L" con"}) {
        EXPECT_EQ(CheckFileName(name), kYes) << testing::PrintToString(std::wstring(name));
    }
}

TEST(FileNameRulesTest, TheModeChoosesTheRules) {
    EXPECT_EQ(CheckFilespec(L"a b", 2), kYes);
    EXPECT_EQ(CheckFilespec(L"a b", 4), kEnd);
    for (const std::uint32_t mode : {0U, 1U, 3U, 5U, 6U, 0xFFFFFFFFU}) {
        EXPECT_EQ(CheckFilespec(L"good", mode), NameVerdict::UnknownMode);
    }
}

TEST(FileNameRulesTest, NoTextIsRejected) {
    EXPECT_EQ(CheckFilespec(nullptr, 2), NameVerdict::NoText);
    EXPECT_EQ(CheckFilespec(nullptr, 4), NameVerdict::NoText);
}

} // namespace
