#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "tests/unit/services/providers/storage/InstanceFixture.h"

namespace {

using namespace obcontract;

constexpr wchar_t kUnknownKey[] = L"{01234567-89AB-CDEF-0123-456789ABCDEF}";

class ProviderInstanceTest : public obtest::InstanceFixture {
protected:
    std::wstring NameWith(std::uint32_t capacity) {
        wchar_t buffer[200];
        std::fill(std::begin(buffer), std::end(buffer), L'#');
        On::GetDisplayName::Call(Seven(), ProviderKind::Storage, buffer, &capacity);
        EXPECT_EQ(buffer[capacity], L'#') << "written past the capacity";
        return capacity > 0 ? buffer : L"";
    }
};

TEST_F(ProviderInstanceTest, ReturnsItsIdAndItsCapabilities) {
    sevenScript_->capabilities = 1 | 1024;
    EXPECT_EQ(On::GetProviderId::Call(Seven()), 7u);
    EXPECT_EQ(On::GetProviderId::Call(Eight()), 8u);
    const auto has = [&](ProviderKind kind, std::uint32_t mask) {
        return On::HasCapability::Call(Seven(), kind, static_cast<ProviderCapability>(mask)) != 0;
    };
    EXPECT_TRUE(has(ProviderKind::Storage, 1));
    EXPECT_FALSE(has(ProviderKind::Storage, 2));
    EXPECT_TRUE(has(ProviderKind::Storage, 1024));
    EXPECT_FALSE(has(ProviderKind::Transform, 1));
}

TEST_F(ProviderInstanceTest, AnswersZeroInEachSlotThatTheContractDoesntList) {
    std::set<std::size_t> listed;
#define NOTE_SLOT(object, number, name, result, arguments) listed.insert(number);
    OB_PROVIDER_SLOTS(NOTE_SLOT)
#undef NOTE_SLOT
    EXPECT_EQ(listed.size(), 18u);
    using Function = std::uint64_t (*)(void*, void*, void*, void*);
    for (std::size_t slot = 0; slot < kCloudProviderSlotCount; ++slot) {
        ASSERT_NE(Seven()->table[slot], nullptr) << slot;
        if (listed.contains(slot)) continue;
        const auto function = reinterpret_cast<Function>(Seven()->table[slot]);
        EXPECT_EQ(function(Seven(), nullptr, nullptr, nullptr), 0u) << slot;
    }
}

TEST_F(ProviderInstanceTest, CutsItsNameAtTheCapacityWithoutHalvingACharacter) {
    sevenScript_->displayName = L"ab\xD83D\xDE00z";
    EXPECT_EQ(NameWith(128), L"ab\xD83D\xDE00z");
    EXPECT_EQ(NameWith(6), L"ab\xD83D\xDE00z");
    EXPECT_EQ(NameWith(5), L"ab\xD83D\xDE00");
    EXPECT_EQ(NameWith(4), L"ab");
    EXPECT_EQ(NameWith(1), L"");
    EXPECT_EQ(NameWith(0), L"");
    std::uint32_t capacity = 5;
    On::GetDisplayName::Call(Seven(), ProviderKind::Storage, nullptr, &capacity);
    wchar_t buffer[] = L"x";
    On::GetDisplayName::Call(Seven(), ProviderKind::Storage, buffer, nullptr);
    EXPECT_STREQ(buffer, L"x");
}

TEST_F(ProviderInstanceTest, StopsExceptionsAtEachSlotThatAsksTheProvider) {
    const std::wstring key = Add(kSeven);
    sevenScript_->throws = true;
    EXPECT_EQ(NameWith(128), L"");
    EXPECT_EQ(On::GetMaxFileSize::Call(Seven(), key.c_str()),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_FALSE(On::IsAccountLoggedIn::Call(Seven(), key.c_str()));
    wchar_t root[2048] = L"left over";
    On::GetAccountRootFolder::Call(Seven(), key.c_str(), root, 2048);
    EXPECT_STREQ(root, L"");
    On::ManageAccount::Call(Seven(), nullptr, key.c_str());
    std::int64_t free = 0;
    std::int64_t total = 0;
    EXPECT_TRUE(On::GetAccountSpace::Call(Seven(), key.c_str(), &free, &total));
    EXPECT_EQ(free, SizeUnknown);
    EXPECT_EQ(total, SizeUnknown);
}

TEST_F(ProviderInstanceTest, HasTheLargestNumberAsLimitWhenNoneIsKnown) {
    const std::wstring key = Add(kSeven);
    const auto limit = [&](const wchar_t* text) { return On::GetMaxFileSize::Call(Seven(), text); };
    constexpr auto kNone = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(limit(key.c_str()), kNone);
    EXPECT_EQ(limit(kUnknownKey), kNone);
    EXPECT_EQ(limit(L""), kNone);
    EXPECT_EQ(limit(nullptr), kNone);
    sevenScript_->maxFileSize = [](auto&) { return 5'000'000'000; };
    EXPECT_EQ(limit(key.c_str()), 5'000'000'000u);
}

TEST_F(ProviderInstanceTest, FillsTheRootFolderOnlyIfItFitsWhole) {
    const std::wstring key = Add(kSeven);
    sevenScript_->rootFolder = [](auto&) { return std::wstring(2047, L'f'); };
    wchar_t root[2049];
    root[2048] = L'#';
    On::GetAccountRootFolder::Call(Seven(), key.c_str(), root, 2048);
    EXPECT_EQ(root, std::wstring(2047, L'f'));
    EXPECT_EQ(root[2048], L'#');
    sevenScript_->rootFolder = [](auto&) { return std::wstring(2048, L'f'); };
    On::GetAccountRootFolder::Call(Seven(), key.c_str(), root, 2048);
    EXPECT_STREQ(root, L"");
    root[0] = L'x';
    On::GetAccountRootFolder::Call(Seven(), nullptr, root, 2048);
    EXPECT_STREQ(root, L"");
    On::GetAccountRootFolder::Call(Seven(), key.c_str(), nullptr, 2048);
}

TEST_F(ProviderInstanceTest, PassesAnAccountOnToItsOwnProvider) {
    const std::wstring key = Add(kEight);
    eightScript_->maxFileSize = [&](const std::wstring& asked) {
        EXPECT_EQ(asked, key);
        return 42;
    };
    eightScript_->rootFolder = [](auto&) { return L"root of eight"; };
    eightScript_->isLoggedIn = [](auto&) { return true; };
    EXPECT_EQ(On::GetMaxFileSize::Call(Seven(), key.c_str()), 42u);
    wchar_t root[2048] = L"";
    On::GetAccountRootFolder::Call(Seven(), key.c_str(), root, 2048);
    EXPECT_STREQ(root, L"root of eight");
    EXPECT_TRUE(On::IsAccountLoggedIn::Call(Seven(), key.c_str()));
    On::ManageAccount::Call(Seven(), nullptr, key.c_str());
    EXPECT_EQ(eightScript_->calls, std::vector<std::wstring>{L"Manage(" + key + L")"});
    EXPECT_TRUE(sevenScript_->calls.empty());
}

TEST_F(ProviderInstanceTest, IsLoggedInToNoAccountThatItDoesntKnow) {
    sevenScript_->isLoggedIn = [](auto&) { return true; };
    EXPECT_FALSE(On::IsAccountLoggedIn::Call(Seven(), kUnknownKey));
    EXPECT_FALSE(On::IsAccountLoggedIn::Call(Seven(), L""));
    EXPECT_FALSE(On::IsAccountLoggedIn::Call(Seven(), nullptr));
    EXPECT_FALSE(On::IsAccountLoggedIn::Call(Seven(), std::wstring(2000, L'k').c_str()));
    On::ManageAccount::Call(Seven(), nullptr, kUnknownKey);
    On::ManageAccount::Call(Seven(), nullptr, nullptr);
    EXPECT_TRUE(sevenScript_->calls.empty());
}

TEST_F(ProviderInstanceTest, FillsTheProfilesOfItsAccountsTheNewestLast) {
    const std::wstring one = Add(kSeven, L"one");
    const std::wstring two = Add(kSeven, L"two");
    Add(kEight, L"of another");
    ProviderProfile profiles[16];
    ASSERT_EQ(On::GetAccountProfiles::Call(Seven(), profiles, 16), 2);
    EXPECT_EQ(profiles[0].providerId, 7u);
    EXPECT_EQ(profiles[0].accountKey, one);
    EXPECT_STREQ(profiles[0].accountLabel, L"one");
    EXPECT_EQ(profiles[1].accountKey, two);
    EXPECT_STREQ(profiles[1].accountLabel, L"two");
    EXPECT_EQ(profiles[1].reserved, L'\0');
    ASSERT_EQ(On::GetAccountProfiles::Call(Seven(), profiles, 1), 1);
    EXPECT_EQ(profiles[0].accountKey, two);
    EXPECT_EQ(On::GetAccountProfiles::Call(Seven(), profiles, 0), 0);
    EXPECT_EQ(On::GetAccountProfiles::Call(Seven(), nullptr, 16), 0);
}

TEST_F(ProviderInstanceTest, FillsSixteenProfilesAtMost) {
    for (int count = 0; count < 16; ++count) Add(kSeven, std::to_wstring(count));
    ProviderProfile profiles[17] = {};
    EXPECT_EQ(On::GetAccountProfiles::Call(Seven(), profiles, 16), 16);
    EXPECT_STREQ(profiles[15].accountLabel, L"15");
    EXPECT_EQ(profiles[16].providerId, 0u);
}

TEST_F(ProviderInstanceTest, PutsTheErrorUnderTheAccountThatWasAskedAboutLast) {
    const std::wstring one = Add(kSeven);
    const std::wstring two = Add(kSeven);
    On::GetMaxFileSize::Call(Seven(), one.c_str());
    On::SetLastProviderError::Call(Seven(), ProviderErrorTooLarge);
    EXPECT_EQ(Error(one), L"“a.zip” is too large for this account. Please choose another account.");
    EXPECT_EQ(Error(two), L"");
    std::int64_t value = 0;
    On::GetAccountSpace::Call(Seven(), two.c_str(), &value, &value);
    On::SetLastProviderError::Call(Seven(), ProviderErrorQuota);
    EXPECT_EQ(Error(two), L"There is too little free space for “a.zip” in this account (Provider). "
                          L"Please delete files there, or choose another account.");
    EXPECT_EQ(Error(one), L"“a.zip” is too large for this account. Please choose another account.");
}

TEST_F(ProviderInstanceTest, GivesTheErrorOfAnAccountToEachInstance) {
    const std::wstring key = Add(kEight);
    eightScript_->displayName = L"Eight";
    eightScript_->maxFileSize = [](auto&) { return 2'000'000'000; };
    On::GetMaxFileSize::Call(Eight(), key.c_str());
    On::SetLastProviderError::Call(Eight(), ProviderErrorTooLarge);
    // Seven is the one that is asked.
    EXPECT_EQ(Error(key, L"b.zip"), L"“b.zip” is too large for this account: Eight takes files of "
                                    L"up to 1.86 GB. Please choose another account.");
}

TEST_F(ProviderInstanceTest, ForgetsTheErrorWhenItIsSetToNone) {
    const std::wstring key = Add(kSeven);
    On::GetMaxFileSize::Call(Seven(), key.c_str());
    On::SetLastProviderError::Call(Seven(), 5);
    EXPECT_EQ(Error(key), L"“a.zip” can't be uploaded. Nothing was attached. Please try again.");
    On::SetLastProviderError::Call(Seven(), 0);
    EXPECT_EQ(Error(key), L"");
}

} // namespace
