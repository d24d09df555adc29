#include <climits>
#include <string>

#include "ObLib/Src/ObString.h"
#include "tests/unit/ObLib/FatalExit.h"

namespace {

using ObLib::ObString;

TEST(StringAppend, JoinsTextsAcrossTheBorder) {
    ObString string(L"123456789012");
    string.Append(L"");
    EXPECT_STREQ(L"123456789012", string.CStr());
    EXPECT_TRUE(string.Core()->IsInline());
    string.Append(L"3");
    EXPECT_STREQ(L"1234567890123", string.CStr());
    EXPECT_TRUE(string.Core()->IsShared());
    string.AppendString(string);
    EXPECT_STREQ(L"12345678901231234567890123", string.CStr());
    string.Append(string.CStr() + 20);
    EXPECT_STREQ(L"12345678901231234567890123890123", string.CStr());
}

TEST(StringAppend, ToANullStringMakesAText) {
    ObString string;
    string.Append(nullptr);
    string.AppendString(ObString());
    EXPECT_TRUE(string.IsNull());
    string.Append(L"");
    EXPECT_FALSE(string.IsNull());
    ObString other;
    other.AppendString(ObString(L"text"));
    EXPECT_STREQ(L"text", other.CStr());
    EXPECT_EQ(4u, other.Length());
}

TEST(StringAppend, ChangesNoOtherStringThatSharesTheText) {
    const ObString one(L"a text that is on the heap");
    ObString other(one);
    other.Append(L"!");
    EXPECT_STREQ(L"a text that is on the heap", one.CStr());
    EXPECT_STREQ(L"a text that is on the heap!", other.CStr());
}

TEST(StringTrim, TakesOffBlanksAndNothingElse) {
    ObString string(L"  \ta b \t  ");
    string.TrimLeft();
    EXPECT_STREQ(L"\ta b \t  ", string.CStr());
    string.TrimRight();
    EXPECT_STREQ(L"\ta b \t", string.CStr());
    string.TrimLeft();
    string.TrimRight();
    EXPECT_STREQ(L"\ta b \t", string.CStr());
    ObString wide(L"\xA0x\x3000");
    wide.TrimLeft();
    wide.TrimRight();
    EXPECT_EQ(3u, wide.Length());
}

TEST(StringTrim, OfBlanksAloneLeavesTheEmptyText) {
    for (const std::size_t blanks : {1, 12, 13, 100}) {
        ObString left(std::wstring(blanks, L' ').c_str());
        ObString right(left);
        left.TrimLeft();
        right.TrimRight();
        EXPECT_EQ(0u, left.Length());
        EXPECT_EQ(0u, right.Length());
        EXPECT_FALSE(right.IsNull());
    }
    ObString none;
    none.TrimLeft();
    none.TrimRight();
    EXPECT_TRUE(none.IsNull());
}

TEST(StringDropLast, TakesOneUnitAndBringsTheTextInsideAtTwelve) {
    ObString string(L"1234567890123");
    const ObString copy(string);
    string.DropLast();
    EXPECT_STREQ(L"123456789012", string.CStr());
    EXPECT_TRUE(string.Core()->IsInline());
    EXPECT_EQ(13u, copy.Length());
    ObString one(L"x");
    one.DropLast();
    one.DropLast();
    EXPECT_STREQ(L"", one.CStr());
    ObString none;
    none.DropLast();
    EXPECT_TRUE(none.IsNull());
}

TEST(StringToLower, FoldsAsTheLibraryDoes) {
    ObString string(L"MiXed 12 TEXT \x20AC");
    string.ToLower();
    EXPECT_STREQ(L"mixed 12 text \x20AC", string.CStr());
    ObString none;
    none.ToLower();
    EXPECT_TRUE(none.IsNull());
}

TEST(StringToLower, ChangesNoOtherStringThatSharesTheText) {
    const ObString one(L"A TEXT THAT IS ON THE HEAP");
    ObString other(one);
    other.ToLower();
    EXPECT_STREQ(L"A TEXT THAT IS ON THE HEAP", one.CStr());
    EXPECT_STREQ(L"a text that is on the heap", other.CStr());
}

TEST(StringFormat, MeasuresAndFillsAroundTheBorder) {
    for (const int width : {0, 1, 11, 12, 13, 500}) {
        ObString string;
        EXPECT_TRUE(string.Format(L"%*d", width, 7));
        EXPECT_EQ(width == 0 ? 1u : static_cast<unsigned>(width), string.Length());
        EXPECT_EQ(L'7', string.CStr()[string.Length() - 1]);
    }
}

TEST(StringFormat, TakesNumbersAndWideAndNarrowTexts) {
    ObString string;
    EXPECT_TRUE(
        string.Format(L"%ls|%s|%d|%u|%04X|%c|%%", L"w\xEFde", "narrow", -5, 7u, 0xAB, L'c'));
    EXPECT_STREQ(L"w\xEFde|narrow|-5|7|00AB|c|%", string.CStr());
    EXPECT_TRUE(string.Format(L""));
    EXPECT_STREQ(L"", string.CStr());
    EXPECT_FALSE(string.IsNull());
}

TEST(StringFormat, MayTakeItsOwnTextAsAnArgument) {
    ObString string(L"1234567890");
    EXPECT_TRUE(string.Format(L"<%ls>%ls", string.CStr(), string.CStr()));
    EXPECT_STREQ(L"<1234567890>1234567890", string.CStr());
}

struct IntegerCase {
    const wchar_t* text;
    bool isInteger;
    std::int32_t value;
};

class StringInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(StringInteger, IsReadOrRefused) {
    const ObString string(GetParam().text);
    EXPECT_EQ(GetParam().isInteger, string.IsInteger());
    EXPECT_EQ(GetParam().value, string.ToInteger());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StringInteger,
    testing::Values(
        IntegerCase{L"0", true, 0}, IntegerCase{L"7", true, 7}, IntegerCase{L"+5", true, 5},
        IntegerCase{L"-5", true, -5}, IntegerCase{L"-0", true, 0}, IntegerCase{L"007", true, 7},
        IntegerCase{L"123456789", true, 123456789}, IntegerCase{L"+999999999", true, 999999999},
        IntegerCase{L"-999999999", true, -999999999}, IntegerCase{L"1234567890", false, INT_MIN},
        IntegerCase{L"-1234567890", false, INT_MIN}, IntegerCase{L"0000000001", false, INT_MIN},
        IntegerCase{L"-", false, INT_MIN}, IntegerCase{L"+", false, INT_MIN},
        IntegerCase{L"", false, INT_MIN}, IntegerCase{nullptr, false, INT_MIN},
        IntegerCase{L"x", false, INT_MIN}, IntegerCase{L"1x", false, INT_MIN},
        IntegerCase{L"1 ", false, INT_MIN}, IntegerCase{L" 1", false, INT_MIN},
        IntegerCase{L"+-1", false, INT_MIN}, IntegerCase{L"1+", false, INT_MIN},
        IntegerCase{L"0x1", false, INT_MIN}, IntegerCase{L"1.5", false, INT_MIN},
        IntegerCase{L"\x0661", false, INT_MIN}));

} // namespace
