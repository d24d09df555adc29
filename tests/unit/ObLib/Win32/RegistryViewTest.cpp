#include "ObLib/Src/Win32/RegistryView.h"

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/ScopeExit.h"

namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\ObLib registry view test";

void Make(REGSAM view) {
    ObLib::UniqueRegistryKey key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0,
                                             KEY_SET_VALUE | view, nullptr, key.Put(), nullptr));
}

bool Opens(ObLib::RegistryView view) {
    return static_cast<bool>(
        ObLib::OpenRegistryKey(HKEY_LOCAL_MACHINE, kKey, KEY_QUERY_VALUE, view));
}

TEST(RegistryView, OpensAKeyInTheViewThatHasIt) {
    using enum ObLib::RegistryView;
    const ObLib::ScopeExit cleanup([]() noexcept {
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kKey, KEY_WOW64_32KEY, 0);
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kKey, KEY_WOW64_64KEY, 0);
    });
    EXPECT_FALSE(Opens(Bits32) || Opens(Bits64) || Opens(Plain));
    Make(KEY_WOW64_32KEY);
    EXPECT_TRUE(Opens(Bits32));
    EXPECT_FALSE(Opens(Bits64) || Opens(Plain));
    Make(KEY_WOW64_64KEY);
    EXPECT_TRUE(Opens(Bits64) && Opens(Plain));
}

TEST(RegistryView, OpensWithTheAccessThatIsAskedFor) {
    const auto key = ObLib::OpenRegistryKey(HKEY_CURRENT_USER, L"Software", KEY_QUERY_VALUE);
    ASSERT_TRUE(key);
    const DWORD value = 1;
    EXPECT_EQ(ERROR_ACCESS_DENIED, RegSetValueExW(key.Get(), L"x", 0, REG_DWORD,
                                                  reinterpret_cast<const BYTE*>(&value), 4));
}

} // namespace
