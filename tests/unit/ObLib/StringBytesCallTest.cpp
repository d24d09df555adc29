// With which page and flags the system is asked to convert 8-bit bytes.
#include <windows.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "ObLib/Src/ObString.h"
#include "tests/support/ImportPatch.h"

namespace {

using ObLib::ObString;

using PageAndFlags = std::pair<UINT, DWORD>;

std::vector<PageAndFlags> g_asked;
int WINAPI NotePage(UINT page, DWORD flags, LPCCH, int, LPWSTR out, int) {
    g_asked.emplace_back(page, flags);
    if (out != nullptr) out[0] = out[1] = L'n';
    return 2;
}

std::vector<PageAndFlags> AskedFor(std::int32_t kind) {
    const obtest::ImportPatch convert("kernel32.dll", "MultiByteToWideChar", &NotePage);
    EXPECT_TRUE(convert.Ok());
    g_asked.clear();
    const ObString string("bytes", kind);
    EXPECT_STREQ(L"nn", string.CStr());
    return g_asked;
}

TEST(StringBytesCall, HasThePageOfItsKindAndComposedCharactersButInUtf8) {
    const auto twice = [](UINT page, DWORD flags) {
        return std::vector<PageAndFlags>(2, {page, flags}); // to measure, and to convert
    };
    for (const std::int32_t kind : {0, 4, 5, 65001, -1})
        EXPECT_EQ(twice(CP_OEMCP, MB_PRECOMPOSED), AskedFor(kind)) << kind;
    EXPECT_EQ(twice(CP_ACP, MB_PRECOMPOSED), AskedFor(1));
    EXPECT_EQ(twice(CP_UTF8, 0), AskedFor(3));
}

} // namespace
