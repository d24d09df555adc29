#include "ObLib/Src/Win32/Utf8.h"

#include <gtest/gtest.h>

namespace {

using ObLib::ToUtf8;
using namespace std::string_literals;

TEST(Utf8Text, IsThatOfTheStandard) {
    EXPECT_EQ(ToUtf8(L"\u00E4\u0308\U0001F600"), "\xC3\xA4\xCC\x88\xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf8(L""), "");
    EXPECT_EQ(ToUtf8(L"a\0b"s), "a\0b"s);
}

TEST(Utf8Text, HasAReplacementForHalfAPair) {
    EXPECT_EQ(ToUtf8(L"a\xD83D"), "a\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(L"\xDE00z"), "\xEF\xBF\xBDz");
}

} // namespace
