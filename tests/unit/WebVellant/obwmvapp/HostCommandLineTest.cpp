#include "obwmvapp/HostCommandLine.h"

#include <gtest/gtest.h>

namespace {

using obwmvapp::ParseHostCommandLine;

TEST(HostCommandLine, ReadsTheIdAndTheOwnerAfterAQuotedPath) {
    const auto request = ParseHostCommandLine(L"\"C:\\Program Files\\a b\\host.exe\" 42 66052");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->id, 42);
    EXPECT_EQ(request->owner, reinterpret_cast<HWND>(66052));
}

TEST(HostCommandLine, ReadsNumbersOverTheirWholeWidth) {
    const auto least = ParseHostCommandLine(L"\"h.exe\" -2147483648 -9223372036854775808");
    ASSERT_TRUE(least);
    EXPECT_EQ(least->id, INT32_MIN);
    EXPECT_EQ(reinterpret_cast<std::int64_t>(least->owner), INT64_MIN);
    const auto most = ParseHostCommandLine(L"\"h.exe\" 2147483647 9223372036854775807");
    ASSERT_TRUE(most);
    EXPECT_EQ(most->id, INT32_MAX);
    EXPECT_EQ(reinterpret_cast<std::int64_t>(most->owner), INT64_MAX);
}

TEST(HostCommandLine, TakesABarePathAndSeveralBlanks) {
    const auto request = ParseHostCommandLine(L"  host.exe \t 7   0  ");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->id, 7);
    EXPECT_EQ(request->owner, nullptr);
}

TEST(HostCommandLine, RefusesWhatIsNotTwoNumbers) {
    for (const wchar_t* line :
         {L"", L"\"h.exe\"", L"\"h.exe\" ", L"\"h.exe\" 1", L"\"h.exe\" 1 ", L"\"h.exe\" 1 2 3",
          L"\"h.exe\" one 2", L"\"h.exe\" 1 two", L"\"h.exe\" 1x 2", L"\"h.exe\" 1 2x",
          L"\"h.exe\" 0x10 2", L"\"h.exe\" +1 2", L"\"h.exe\" - 2", L"\"h.exe\" 1.5 2",
          L"\"h.exe\" 2147483648 2", L"\"h.exe\" -2147483649 2", L"\"h.exe\" 1 9223372036854775808",
          L"\"h.exe 1 2", L"\"h.exe\" \"1\" 2"}) {
        EXPECT_FALSE(ParseHostCommandLine(line)) << testing::PrintToString(std::wstring(line));
    }
}

} // namespace
