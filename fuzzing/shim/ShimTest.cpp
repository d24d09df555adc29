// The native side gives the results of the Windows side, as far as the code relies on them.
#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cwchar>
#include <string>

#include "ObLibX/src/xml/encoding/SystemCalls.h"

namespace {

using ObLibX::SystemFromWide;
using ObLibX::SystemToWide;

int Write(wchar_t* out, std::size_t capacity, const wchar_t* format, ...) {
    va_list list;
    va_start(list, format);
    const int length = std::vswprintf(out, capacity, format, list);
    va_end(list);
    return length;
}

TEST(NativeWide, StringsSearchAndCompareBySixteenBits) {
    const std::wstring text = L"one two two";
    EXPECT_EQ(11u, std::wcslen(text.c_str()));
    EXPECT_EQ(4u, text.find(L"two"));
    EXPECT_EQ(8u, text.rfind(L"two"));
    EXPECT_EQ(text.c_str() + 10, std::wcsrchr(text.c_str(), L'o'));
    EXPECT_EQ(text.c_str() + 4, std::wcsstr(text.c_str(), L"two"));
    EXPECT_EQ(nullptr, std::wcsstr(text.c_str(), L"twos"));
    EXPECT_LT(std::wcscmp(L"\xD800", L"\xFFFF"), 0);
    EXPECT_EQ(0, _wcsicmp(L"HeaD", L"hEAd"));
    EXPECT_NE(0, _wcsnicmp(L"Head", L"Hexd", 3));
    EXPECT_EQ(0, _wcsnicmp(L"Head", L"hexd", 2));
}

TEST(NativeWide, NumbersHaveTheRangeOfWindows) {
    wchar_t* end = nullptr;
    const wchar_t* const text = L" -12x";
    EXPECT_EQ(-12, std::wcstol(text, &end, 10));
    EXPECT_EQ(text + 4, end);
    errno = 0;
    EXPECT_EQ(INT_MAX, std::wcstol(L"2147483648", nullptr, 10));
    EXPECT_EQ(ERANGE, errno);
    EXPECT_EQ(0xFFFFFFFFul, std::wcstoul(L"FFFFFFFF", nullptr, 16));
}

TEST(NativeWide, FormatAnswersTheWholeLengthWhateverTheRoom) {
    EXPECT_EQ(9, Write(nullptr, 0, L"%d %ls %s", 12, L"abc", "de"));
    wchar_t room[10] = {};
    EXPECT_EQ(9, Write(room, 10, L"%d %ls %s", 12, L"abc", "de"));
    EXPECT_STREQ(L"12 abc de", room);
    EXPECT_EQ(9, Write(room, 5, L"%d %ls %s", 12, L"abc", "de"));
    EXPECT_STREQ(L"12 a", room);
    EXPECT_EQ(10, Write(nullptr, 0, L"%-4ls|%05X", L"ab", 0xBEEF));
}

TEST(NativeCodePages, BytesThatMeanNothingBecomeTheReplacementCharacterOneByOne) {
    wchar_t out[8] = {};
    EXPECT_EQ(4, SystemToWide(65001, "a\xFF\xC3\xA4z", 5, out, 8));
    EXPECT_EQ((std::wstring{L'a', wchar_t(0xFFFD), wchar_t(0xE4), L'z'}), std::wstring(out, 4));
    EXPECT_EQ(2, SystemToWide(932, "\x82\xA0z", 3, out, 8));
    EXPECT_EQ(wchar_t(0x3042), out[0]);
}

TEST(NativeCodePages, CharactersThatThePageLacksAreNotedAndReplaced) {
    char out[8] = {};
    std::int32_t used = -1;
    EXPECT_EQ(3, SystemFromWide(1252, L"a\x3042z", 3, out, 8, &used));
    EXPECT_STREQ("a?z", out);
    EXPECT_EQ(1, used);
    EXPECT_EQ(4, SystemFromWide(1252, L"Bj\xF6r", 4, nullptr, 0, &used));
    EXPECT_EQ(0, used);
}

TEST(NativeCodePages, FailureIsZero) {
    char out[2] = {};
    wchar_t wide[2] = {};
    std::int32_t used = 0;
    EXPECT_EQ(0, SystemFromWide(1252, L"abc", 3, out, 2, nullptr)) << "no room";
    EXPECT_EQ(0, SystemToWide(1252, "abc", 3, wide, 2)) << "no room";
    EXPECT_EQ(0, SystemFromWide(65001, L"a", 1, out, 2, &used)) << "no note in UTF-8";
    EXPECT_EQ(0, SystemToWide(12345, "a", 1, wide, 2)) << "no such page";
    EXPECT_EQ(0, SystemToWide(1252, "", 0, wide, 2));
}

} // namespace
