#include "services/transforms/CommandLine.h"

#include <gtest/gtest.h>

using transforms::ParseWorkCommandLine;

namespace {

TEST(WorkCommandLine, HasTwoHandlesAfterTheProgram) {
    const auto pipes = ParseWorkCommandLine(L"\"C:\\a b\\PVXTransform64.exe\" 120 4294");
    ASSERT_TRUE(pipes);
    EXPECT_EQ(pipes->requests, 120u);
    EXPECT_EQ(pipes->replies, 4294u);
}

TEST(WorkCommandLine, IsRefusedInAnyOtherForm) {
    for (const wchar_t* text :
         {L"", L"\"", L"a.exe", L"a.exe 1 2", L"\"a.exe\"", L"\"a.exe\" ", L"\"a.exe\" 1",
          L"\"a.exe\" 1 ", L"\"a.exe\" 1 2 ", L"\"a.exe\" 1 2 3", L"\"a.exe\" 0 2",
          L"\"a.exe\" 1 0", L"\"a.exe\" -1 2", L"\"a.exe\" 1 2x", L"\"a.exe\"  1 2",
          L"\"a.exe\" 1  2", L"\"a.exe\" 99999999999999999999 2", L"\"a.exe\" 2147483648 2"}) {
        EXPECT_FALSE(ParseWorkCommandLine(text)) << testing::PrintToString(std::wstring(text));
    }
}

} // namespace
