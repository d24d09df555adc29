#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/AccountStore.h"
#include "tests/support/ProductRegistry.h"

using obcontract::ProviderProfile;

namespace {

using providers::AccountStore;
using providers::PredefinedKey;

const std::wstring kKey = obcontract::kProviderManagerKey;
constexpr wchar_t kValue[] = L"DefaultStorageProfile";

ProviderProfile FullProfile() {
    ProviderProfile profile{};
    profile.providerId = 21;
    std::fill_n(profile.accountLabel, 50, L'L');
    std::fill_n(profile.accountKey, 999, L'K');
    return profile;
}

bool SameBytes(const ProviderProfile& one, const ProviderProfile& other) {
    return std::memcmp(&one, &other, sizeof(one)) == 0;
}

struct Stored {
    DWORD type = REG_NONE;
    std::vector<std::uint8_t> bytes;
};

Stored ReadStored() {
    ObLib::UniqueRegistryKey key;
    Stored stored;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey.c_str(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS) {
        return stored;
    }
    DWORD size = 0;
    RegQueryValueExW(key.Get(), kValue, nullptr, nullptr, nullptr, &size);
    stored.bytes.resize(size);
    RegQueryValueExW(key.Get(), kValue, nullptr, &stored.type, stored.bytes.data(), &size);
    return stored;
}

class AccountStoreTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }

    // Puts a value there that wasn't saved by the store, and expects that it isn't taken.
    void ExpectRefused(DWORD type, const void* data, std::size_t size) {
        obtest::SetRawValue(HKEY_CURRENT_USER, kKey, kValue, type, data, static_cast<DWORD>(size));
        EXPECT_TRUE(SameBytes(store_.DefaultProfile(), ProviderProfile{}));
    }

    AccountStore store_{HKEY_CURRENT_USER, kKey};
};

TEST_F(AccountStoreTest, KeepsTheProfileAsBinaryByteByByte) {
    const ProviderProfile profile = FullProfile();
    ASSERT_TRUE(store_.SaveDefaultProfile(profile));
    const Stored stored = ReadStored();
    EXPECT_EQ(stored.type, static_cast<DWORD>(REG_BINARY));
    ASSERT_EQ(stored.bytes.size(), sizeof(profile));
    EXPECT_EQ(std::memcmp(stored.bytes.data(), &profile, sizeof(profile)), 0);
    EXPECT_TRUE(SameBytes(store_.DefaultProfile(), profile));
}

TEST_F(AccountStoreTest, IsReadByAnotherStoreOnTheSameKey) {
    ASSERT_TRUE(store_.SaveDefaultProfile(FullProfile()));
    EXPECT_TRUE(SameBytes(AccountStore(HKEY_CURRENT_USER, kKey).DefaultProfile(), FullProfile()));
    EXPECT_EQ(AccountStore(HKEY_CURRENT_USER, kKey + L"2").DefaultProfile().providerId, 0u);
    EXPECT_EQ(AccountStore(HKEY_LOCAL_MACHINE, kKey).DefaultProfile().providerId, 0u);
}

TEST_F(AccountStoreTest, ReadingMakesNoKey) {
    EXPECT_TRUE(SameBytes(store_.DefaultProfile(), ProviderProfile{}));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kKey));
}

TEST_F(AccountStoreTest, SavesTheEmptyProfileToo) {
    ASSERT_TRUE(store_.SaveDefaultProfile(FullProfile()));
    ASSERT_TRUE(store_.SaveDefaultProfile(ProviderProfile{}));
    EXPECT_TRUE(SameBytes(store_.DefaultProfile(), ProviderProfile{}));
}

TEST_F(AccountStoreTest, TakesNoValueOfAnotherSize) {
    std::vector<std::uint8_t> bytes(sizeof(ProviderProfile) + 1, 0);
    bytes[0] = 7;
    ExpectRefused(REG_BINARY, bytes.data(), sizeof(ProviderProfile) + 1);
    ExpectRefused(REG_BINARY, bytes.data(), sizeof(ProviderProfile) - 1);
    ExpectRefused(REG_BINARY, bytes.data(), 0);
}

TEST_F(AccountStoreTest, TakesNoValueOfAnotherType) {
    const ProviderProfile profile = FullProfile();
    ExpectRefused(REG_SZ, &profile, sizeof(profile));
    ExpectRefused(REG_NONE, &profile, sizeof(profile));
}

TEST_F(AccountStoreTest, TakesNoTextsWithoutAnEnd) {
    ProviderProfile label = FullProfile();
    label.accountLabel[50] = L'x';
    ExpectRefused(REG_BINARY, &label, sizeof(label));
    ProviderProfile key = FullProfile();
    key.accountKey[999] = L'x';
    ExpectRefused(REG_BINARY, &key, sizeof(key));
    ProviderProfile reserved = FullProfile();
    reserved.reserved = L'x';
    ExpectRefused(REG_BINARY, &reserved, sizeof(reserved));
}

TEST_F(AccountStoreTest, KeepsTheOldProfileWhenTheNewOneIsBad) {
    ASSERT_TRUE(store_.SaveDefaultProfile(FullProfile()));
    ProviderProfile bad = FullProfile();
    bad.accountKey[999] = L'x';
    EXPECT_FALSE(store_.SaveDefaultProfile(bad));
    EXPECT_TRUE(SameBytes(store_.DefaultProfile(), FullProfile()));
}

TEST_F(AccountStoreTest, ReportsThatItCantWrite) {
    // The name of a key has at most 255 characters.
    const AccountStore store(HKEY_CURRENT_USER, std::wstring(300, L'k'));
    EXPECT_FALSE(store.SaveDefaultProfile(FullProfile()));
    EXPECT_EQ(store.DefaultProfile().providerId, 0u);
}

TEST(PredefinedKeys, AreKnownWithTheirSignExtendedOrNot) {
    EXPECT_EQ(PredefinedKey(static_cast<std::int32_t>(0x80000000)), HKEY_CLASSES_ROOT);
    EXPECT_EQ(PredefinedKey(static_cast<std::int32_t>(0x80000001)), HKEY_CURRENT_USER);
    EXPECT_EQ(PredefinedKey(static_cast<std::int32_t>(0x80000002)), HKEY_LOCAL_MACHINE);
    EXPECT_EQ(PredefinedKey(static_cast<std::int32_t>(0x80000003)), HKEY_USERS);
    EXPECT_EQ(PredefinedKey(static_cast<std::int32_t>(0x80000005)), HKEY_CURRENT_CONFIG);
    EXPECT_EQ(PredefinedKey(0x80000001), HKEY_CURRENT_USER);
    EXPECT_EQ(PredefinedKey(reinterpret_cast<std::intptr_t>(HKEY_CURRENT_USER)), HKEY_CURRENT_USER);
}

TEST(PredefinedKeys, AreNothingElse) {
    for (const std::int64_t hive :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{0x80000004},
          std::int64_t{0x180000001}, std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_FALSE(PredefinedKey(hive)) << hive;
    }
}

} // namespace
