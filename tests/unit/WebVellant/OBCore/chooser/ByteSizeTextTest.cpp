// Wine lacks the call that rounds, so fakes of it and of the search for it prove what is asked.
#include "OBCore/chooser/ByteSizeText.h"

#include <windows.h>

#include <shlwapi.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <vector>

#include "tests/support/ImportPatch.h"

namespace {

using obcore::ByteSizeText;
using obtest::ImportPatch;

struct Asked {
    ULONGLONG size;
    SFBS_FLAGS flags;
    UINT capacity;
};
std::vector<Asked> asked;
HRESULT answer = S_OK;

HRESULT WINAPI FakeFormat(ULONGLONG size, SFBS_FLAGS flags, PWSTR text, UINT capacity) {
    asked.push_back({size, flags, capacity});
    if (SUCCEEDED(answer)) _snwprintf(text, capacity, L"<%I64u>", size);
    return answer;
}

FARPROC WINAPI FindFake(HMODULE, LPCSTR name) {
    EXPECT_STREQ(name, "StrFormatByteSizeEx");
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&FakeFormat));
}
FARPROC WINAPI FindNothing(HMODULE, LPCSTR) { return nullptr; }

std::wstring OlderText(LONGLONG size) {
    wchar_t text[64] = L"";
    StrFormatByteSizeW(size, text, 64);
    return text;
}

class ByteSizes : public testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        answer = S_OK;
    }
};

TEST_F(ByteSizes, AreRoundedToTheNearestDigitThatIsShown) {
    const ImportPatch find("kernel32.dll", "GetProcAddress", &FindFake);
    ASSERT_TRUE(find.Ok());
    EXPECT_EQ(ByteSizeText(5000000000), L"<5000000000>");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].flags, 1);
    EXPECT_GE(asked[0].capacity, 32u);
}

TEST_F(ByteSizes, BelowZeroAreTheAbsoluteValueAfterASign) {
    const ImportPatch find("kernel32.dll", "GetProcAddress", &FindFake);
    ASSERT_TRUE(find.Ok());
    EXPECT_EQ(ByteSizeText(-2), L"-<2>");
    EXPECT_EQ(ByteSizeText(0), L"<0>");
    EXPECT_EQ(ByteSizeText(std::numeric_limits<std::int64_t>::min()), L"-<9223372036854775808>");
    EXPECT_EQ(ByteSizeText(std::numeric_limits<std::int64_t>::max()), L"<9223372036854775807>");
}

TEST_F(ByteSizes, ComeFromTheOlderCallWhereTheSystemLacksTheRoundingOne) {
    const ImportPatch find("kernel32.dll", "GetProcAddress", &FindNothing);
    ASSERT_TRUE(find.Ok());
    EXPECT_EQ(ByteSizeText(1536), OlderText(1536));
    EXPECT_EQ(ByteSizeText(-1536), L"-" + OlderText(1536));
    EXPECT_EQ(ByteSizeText(std::numeric_limits<std::int64_t>::min()),
              L"-" + OlderText(std::numeric_limits<LONGLONG>::max()));
    EXPECT_FALSE(ByteSizeText(0).empty());
}

TEST_F(ByteSizes, ComeFromTheOlderCallWhenTheRoundingOneFails) {
    const ImportPatch find("kernel32.dll", "GetProcAddress", &FindFake);
    ASSERT_TRUE(find.Ok());
    answer = E_OUTOFMEMORY;
    EXPECT_EQ(ByteSizeText(1536), OlderText(1536));
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(ByteSizes, AreReadableOnThisSystem) {
    if (!GetProcAddress(LoadLibraryW(L"shlwapi.dll"), "StrFormatByteSizeEx")) {
        printf("This system's shlwapi has no StrFormatByteSizeEx: fakes prove its calls.\n");
    }
    EXPECT_NE(ByteSizeText(5LL << 30).find(L"5.00 GB"), std::wstring::npos);
}

} // namespace
