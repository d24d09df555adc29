#include "OBCore/modules/ObTrace.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/support/ImportPatch.h"

namespace {

int writes;

BOOL WINAPI CountWriteFile(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    ++writes;
    return FALSE;
}

// What the runtime writes goes through the table of its own module.
TEST(TraceCall, WritesNothingAnywhere) {
    const HMODULE runtime = GetModuleHandleW(L"msvcrt.dll");
    ASSERT_NE(nullptr, runtime);
    writes = 0;
    {
        const obtest::ImportPatch<decltype(WriteFile)> file("kernel32.dll", "WriteFile",
                                                            &CountWriteFile, runtime);
        ASSERT_TRUE(file.Ok());
        obcore::ObTrace("line %d of %s and %S\n", 1, "narrow", L"wide");
        EXPECT_EQ(0, writes);
        // The count does see a line that is written.
        std::fputs("line\n", stderr);
    }
    EXPECT_LT(0, writes);
}

// No argument is looked at either, so that a line with a wrong one does no harm in the field.
TEST(TraceCall, LooksAtNoArgument) {
    const char* missing = nullptr;
    obcore::ObTrace("%s %S", missing, reinterpret_cast<const wchar_t*>(1));
    obcore::ObTrace(nullptr);
}

} // namespace
