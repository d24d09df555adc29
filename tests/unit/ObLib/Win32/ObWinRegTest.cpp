#include "ObLib/Src/Win32/ObWinReg.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"

namespace {

using ObLib::ObBuffer;
using ObLib::ObRegKey;
using ObLib::ObString;

constexpr wchar_t kKey[] = L"SOFTWARE\\Tavi Ren Computing\\Tests";
constexpr DWORD kAnyType = 0x7F0000;

class RegistryKey : public testing::Test {
protected:
    void SetUp() override {
        obtest::ClearProductRegistry();
        obtest::MakeKey(HKEY_CURRENT_USER, kKey);
        ASSERT_TRUE(key_.Open());
    }
    void TearDown() override { obtest::ClearProductRegistry(); }

    static void Store(DWORD type, const std::string& bytes) {
        // The system stores one unit more where a text isn't ended and a NUL follows it in memory.
        const std::string followed = bytes + "\xFF\xFF";
        obtest::SetRawValue(HKEY_CURRENT_USER, kKey, L"value", type, followed.data(),
                            static_cast<DWORD>(bytes.size()));
    }
    bool Read(DWORD mask = kAnyType) {
        buffer_.Resize(3, ObLib::kResizeClears); // not empty before
        return key_.ReadValue(L"value", type_, buffer_, mask);
    }
    std::string Bytes() const {
        return std::string(static_cast<const char*>(buffer_.data), buffer_.size);
    }

    ObRegKey key_{HKEY_CURRENT_USER, ObString(kKey)};
    DWORD type_ = 0;
    ObBuffer buffer_;
};

// Units as the bytes in which the registry keeps them.
std::string Units(const std::wstring& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
}
const std::wstring kNul(1, L'\0');

TEST_F(RegistryKey, DoesNotOpenWithoutARootOrAPath) {
    EXPECT_FALSE(ObRegKey(nullptr, ObString(kKey)).Open());
    EXPECT_FALSE(ObRegKey(HKEY_CURRENT_USER, ObString()).Open());
    EXPECT_FALSE(ObRegKey(HKEY_CURRENT_USER, ObString(L"")).Open());
}

TEST_F(RegistryKey, KeepsWhatTheSystemAnswered) {
    ObRegKey missing(HKEY_CURRENT_USER, ObString(L"SOFTWARE\\Tavi Ren Computing\\None"));
    EXPECT_FALSE(missing.Open());
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, missing.lastError);
    EXPECT_EQ(nullptr, missing.key);
    EXPECT_EQ(ERROR_SUCCESS, key_.lastError);
}

TEST_F(RegistryKey, ClosesTwice) {
    EXPECT_TRUE(key_.Close());
    EXPECT_EQ(nullptr, key_.key);
    EXPECT_TRUE(key_.Close());
    EXPECT_FALSE(Read());
    EXPECT_EQ(0u, buffer_.size);
}

TEST_F(RegistryKey, IsClosedEvenIfTheSystemReportsAFailure) {
    RegCloseKey(key_.key); // without the object
    EXPECT_FALSE(key_.Close());
    EXPECT_EQ(ERROR_INVALID_HANDLE, key_.lastError);
    EXPECT_TRUE(key_.Close());
}

HKEY g_closed = nullptr;
LONG WINAPI NoteClosed(HKEY key) {
    g_closed = key;
    return ERROR_SUCCESS;
}

TEST_F(RegistryKey, OpeningAgainClosesTheOldKey) {
    const HKEY before = key_.key;
    {
        const obtest::ImportPatch closing("advapi32.dll", "RegCloseKey", &NoteClosed);
        ASSERT_TRUE(closing.Ok());
        EXPECT_TRUE(key_.Open());
        EXPECT_EQ(before, g_closed);
    }
    RegCloseKey(before);
}

TEST_F(RegistryKey, SeesTheViewOfItsProcess) {
    obtest::MakeKey(HKEY_LOCAL_MACHINE, kKey, 32);
    EXPECT_FALSE(ObRegKey(HKEY_LOCAL_MACHINE, ObString(kKey)).Open());
    obtest::MakeKey(HKEY_LOCAL_MACHINE, kKey, 64);
    EXPECT_TRUE(ObRegKey(HKEY_LOCAL_MACHINE, ObString(kKey)).Open());
    ObRegKey other(HKEY_LOCAL_MACHINE,
                   ObString(L"SOFTWARE\\Wow6432Node\\Tavi Ren Computing\\Tests"));
    EXPECT_TRUE(other.Open()) << "the other view by its own name";
}

TEST_F(RegistryKey, AMissingValueGivesFalseAndAnEmptyBuffer) {
    EXPECT_FALSE(Read());
    EXPECT_EQ(0u, buffer_.size);
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, key_.lastError);
}

struct TypeRow {
    DWORD type;
    DWORD bit;
};
class RegistryType : public RegistryKey, public testing::WithParamInterface<TypeRow> {};

TEST_P(RegistryType, IsAcceptedByItsOwnBitOnly) {
    const std::string bytes = Units(L"ab" + kNul + kNul);
    Store(GetParam().type, bytes);
    EXPECT_TRUE(Read(GetParam().bit));
    EXPECT_EQ(GetParam().type, type_);
    EXPECT_EQ(bytes, Bytes());
    EXPECT_FALSE(Read(~GetParam().bit));
    EXPECT_EQ(GetParam().type, type_);
    EXPECT_EQ(0u, buffer_.size);
    EXPECT_FALSE(Read(0));
}

INSTANTIATE_TEST_SUITE_P(Types, RegistryType,
                         testing::Values(TypeRow{REG_SZ, 1u << 16},
                                         TypeRow{REG_EXPAND_SZ, 1u << 17},
                                         TypeRow{REG_MULTI_SZ, 1u << 18},
                                         TypeRow{REG_DWORD, 1u << 19},
                                         TypeRow{REG_BINARY, 1u << 20}, TypeRow{REG_NONE, 1u << 21},
                                         TypeRow{REG_QWORD, 1u << 22}, TypeRow{REG_LINK, 1u << 22},
                                         TypeRow{REG_DWORD_BIG_ENDIAN, 1u << 22}));

struct TextRow {
    const char* what;
    DWORD type;
    std::string stored;
    std::string read;
};
class RegistryText : public RegistryKey, public testing::WithParamInterface<TextRow> {};

TEST_P(RegistryText, ComesBackEnded) {
    Store(GetParam().type, GetParam().stored);
    ASSERT_TRUE(Read()) << GetParam().what;
    EXPECT_EQ(GetParam().read, Bytes()) << GetParam().what;
    // Whatever was stored: who reads over the end meets a NUL.
    ASSERT_GE(buffer_.capacity, buffer_.size);
    const auto* const units = static_cast<const wchar_t*>(buffer_.data);
    EXPECT_LE(std::wcslen(units) * 2, GetParam().stored.size());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RegistryText,
    testing::Values(
        TextRow{"ended", REG_SZ, Units(L"ab" + kNul), Units(L"ab" + kNul)},
        TextRow{"not ended", REG_SZ, Units(L"ab"), Units(L"ab" + kNul)},
        TextRow{"expandable, not ended", REG_EXPAND_SZ, Units(L"%a%"), Units(L"%a%" + kNul)},
        TextRow{"nothing", REG_SZ, "", Units(kNul)},
        TextRow{"a NUL", REG_SZ, Units(kNul), Units(kNul)},
        TextRow{"half a unit more", REG_SZ, Units(L"ab") + "c", Units(L"ab" + kNul)},
        TextRow{"half a unit past the end", REG_SZ, Units(L"a" + kNul) + "c", Units(L"a" + kNul)},
        TextRow{"half a unit", REG_SZ, "c", Units(kNul)},
        TextRow{"a list", REG_MULTI_SZ, Units(L"a" + kNul + L"b" + kNul + kNul),
                Units(L"a" + kNul + L"b" + kNul + kNul)},
        TextRow{"a list with one NUL", REG_MULTI_SZ, Units(L"a" + kNul + L"b" + kNul),
                Units(L"a" + kNul + L"b" + kNul + kNul)},
        TextRow{"a list without NULs", REG_MULTI_SZ, Units(L"ab"), Units(L"ab" + kNul)},
        TextRow{"a list whose last but one is NUL", REG_MULTI_SZ, Units(L"a" + kNul + L"b"),
                Units(L"a" + kNul + L"b")},
        TextRow{"an empty list", REG_MULTI_SZ, "", Units(kNul + kNul)},
        TextRow{"an empty list of one NUL", REG_MULTI_SZ, Units(kNul), Units(kNul + kNul)},
        TextRow{"an empty list of two NULs", REG_MULTI_SZ, Units(kNul + kNul), Units(kNul + kNul)},
        TextRow{"a list of one unit", REG_MULTI_SZ, Units(L"a"), Units(L"a" + kNul)}));

TEST_F(RegistryKey, OtherTypesKeepTheirBytes) {
    for (const std::string& bytes : {std::string("abc"), std::string(), std::string(70000, 'b')}) {
        Store(REG_BINARY, bytes);
        ASSERT_TRUE(Read());
        EXPECT_EQ(bytes, Bytes());
    }
}

// Answers the first call as the system does; before the second the value changes.
decltype(&RegQueryValueExW) g_realQuery = nullptr;
std::string g_changed;
LONG WINAPI QueryAndChange(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                           LPDWORD size) {
    if (data != nullptr)
        RegSetValueExW(key, name, 0, REG_BINARY, reinterpret_cast<const BYTE*>(g_changed.data()),
                       static_cast<DWORD>(g_changed.size()));
    return g_realQuery(key, name, reserved, type, data, size);
}

TEST_F(RegistryKey, AValueThatChangesItsSizeMeanwhileGivesFalse) {
    HKEY writable = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_ALL_ACCESS, &writable));
    const ObLib::UniqueRegistryKey owner(writable);
    const obtest::ImportPatch query("advapi32.dll", "RegQueryValueExW", &QueryAndChange);
    ASSERT_TRUE(query.Ok());
    g_realQuery = query.Real();
    for (const std::size_t size : {0, 2, 5, 8, 9, 100}) {
        Store(REG_BINARY, "abcd");
        g_changed.assign(size, 'x');
        EXPECT_FALSE(Read()) << size;
        EXPECT_EQ(0u, buffer_.size);
    }
    Store(REG_BINARY, "abcd");
    g_changed = "wxyz";
    EXPECT_TRUE(Read());
    EXPECT_EQ("wxyz", Bytes());
}

} // namespace
