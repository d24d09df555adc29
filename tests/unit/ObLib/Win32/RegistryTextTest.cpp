#include "ObLib/Src/Win32/RegistryText.h"

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

using enum ObLib::RegistryVariables;

constexpr wchar_t kKey[] = L"Software\\ObLib registry text test";

class ReadRegistryTextTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(ERROR_SUCCESS,
                  RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0,
                                  KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, key_.Put(), nullptr));
    }
    void TearDown() override { RegDeleteKeyW(HKEY_CURRENT_USER, kKey); }

    // Without a NUL at its end, unless the text has one.
    void Store(const wchar_t* name, DWORD type, const std::wstring& text) {
        const auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_.Get(), name, 0, type,
                                                reinterpret_cast<const BYTE*>(text.data()), size));
    }

    LSTATUS Read(const wchar_t* name, std::size_t longest = 20,
                 ObLib::RegistryVariables variables = Expand) {
        return ObLib::ReadRegistryText(key_.Get(), name, longest, variables, text_);
    }

    ObLib::UniqueRegistryKey key_;
    std::wstring text_ = L"of before";
};

TEST_F(ReadRegistryTextTest, IsReadUpToItsFirstNul) {
    Store(L"a", REG_SZ, L"text");
    EXPECT_EQ(ERROR_SUCCESS, Read(L"a"));
    EXPECT_EQ(L"text", text_);
    Store(L"a", REG_SZ, std::wstring(L"one\0two\0", 8));
    EXPECT_EQ(ERROR_SUCCESS, Read(L"a"));
    EXPECT_EQ(L"one", text_);
}

TEST_F(ReadRegistryTextTest, OfTheKeyItselfHasNoName) {
    Store(nullptr, REG_SZ, L"own");
    EXPECT_EQ(ERROR_SUCCESS, Read(nullptr));
    EXPECT_EQ(L"own", text_);
}

TEST_F(ReadRegistryTextTest, IsRefusedWhenItIsLonger) {
    Store(L"a", REG_SZ, L"12345");
    EXPECT_EQ(ERROR_SUCCESS, Read(L"a", 5));
    EXPECT_EQ(L"12345", text_);
    EXPECT_EQ(ERROR_MORE_DATA, Read(L"a", 4));
    EXPECT_EQ(L"", text_);
}

TEST_F(ReadRegistryTextTest, OfAnotherTypeIsRefused) {
    Store(L"a", REG_BINARY, L"12");
    EXPECT_EQ(ERROR_UNSUPPORTED_TYPE, Read(L"a"));
    EXPECT_EQ(L"", text_);
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Read(L"b"));
}

TEST_F(ReadRegistryTextTest, WithVariablesHasTheirValuesOrIsRefused) {
    ASSERT_TRUE(SetEnvironmentVariableW(L"OB_TEST", L"value"));
    Store(L"a", REG_EXPAND_SZ, std::wstring(L"<%OB_TEST%>") + L'\0');
    EXPECT_EQ(ERROR_SUCCESS, Read(L"a"));
    EXPECT_EQ(L"<value>", text_);
    EXPECT_EQ(ERROR_UNSUPPORTED_TYPE, Read(L"a", 20, Refuse));
    EXPECT_EQ(L"", text_);
}

using WriteRegistryTextTest = ReadRegistryTextTest;

TEST_F(WriteRegistryTextTest, StoresATextWithItsNul) {
    ASSERT_EQ(ERROR_SUCCESS, ObLib::WriteRegistryText(key_.Get(), L"a", L"text"));
    DWORD type = REG_NONE;
    wchar_t stored[8] = L"-------";
    DWORD size = sizeof stored;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key_.Get(), L"a", nullptr, &type,
                                              reinterpret_cast<BYTE*>(stored), &size));
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(std::wstring(stored, size / sizeof(wchar_t)), std::wstring(L"text\0", 5));
    ASSERT_EQ(ERROR_SUCCESS, ObLib::WriteRegistryText(key_.Get(), nullptr, L""));
    EXPECT_EQ(ERROR_SUCCESS, Read(nullptr));
    EXPECT_EQ(L"", text_);
}

TEST_F(WriteRegistryTextTest, ReportsAKeyThatCantBeWritten) {
    ObLib::UniqueRegistryKey readable;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_QUERY_VALUE, readable.Put()));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ObLib::WriteRegistryText(readable.Get(), L"a", L"text"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Read(L"a"));
}

} // namespace
