#include "ObLib/Src/Win32/FailFast.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using ObLib::AppendOrFailFast;
using ObLib::CopyOrFailFast;

// The process ends with the code of a stack buffer overrun, and without the output of a test.
#define EXPECT_FAIL_FAST(statement)                                                                \
    EXPECT_EXIT(                                                                                   \
        statement, [](int code) { return static_cast<DWORD>(code) == 0xC0000409; }, "")

TEST(FatalCopy, CopiesATextThatJustFits) {
    wchar_t buffer[4] = {};
    CopyOrFailFast(buffer, 4, L"abc");
    EXPECT_STREQ(L"abc", buffer);
}

TEST(FatalCopy, EndsTheProcessAtOneCharacterMore) {
    EXPECT_FAIL_FAST({
        wchar_t buffer[4] = {};
        CopyOrFailFast(buffer, 4, L"abcd");
    });
}

TEST(FatalCopy, AppendsAfterTheTextInTheBuffer) {
    wchar_t buffer[6] = L"ab";
    AppendOrFailFast(buffer, 6, L"cde");
    EXPECT_STREQ(L"abcde", buffer);
}

TEST(FatalCopy, EndsTheProcessWhenAnAppendOverflows) {
    EXPECT_FAIL_FAST({
        wchar_t buffer[6] = L"ab";
        AppendOrFailFast(buffer, 6, L"cdef");
    });
}

} // namespace
