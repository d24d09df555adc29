#include "OBCore/chooser/AccountCache.h"

#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

namespace {

using obcore::AccountCache;
using obtest::FakeModules;
using obtest::Lines;

class AccountCacheTest : public obtest::ChooserFixture {
protected:
    AccountCache Refreshed() {
        AccountCache cache;
        obcore::RefreshAccountCache(cache, job_.OwnedProviderManager);
        return cache;
    }
};

TEST_F(AccountCacheTest, TakesTheAccountsOfEveryProviderInTheirOrder) {
    Answer(L"Providers", L"9,7");
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob");
    Answer(L"provider9.GetAccountProfiles", L"Cid|cid");
    const AccountCache cache = Refreshed();
    ASSERT_EQ(cache.size(), 2u);
    EXPECT_EQ(cache.begin()->first, 7);
    const auto& accounts = cache.at(7);
    ASSERT_EQ(accounts.size(), 2u);
    EXPECT_EQ(accounts[0].providerId, 7u);
    EXPECT_STREQ(accounts[0].accountLabel, L"Ann");
    EXPECT_STREQ(accounts[1].accountKey, L"bob");
    ASSERT_EQ(cache.at(9).size(), 1u);
    EXPECT_STREQ(cache.at(9)[0].accountKey, L"cid");
}

TEST_F(AccountCacheTest, TakesAnIdForASignedNumberAndSortsByIt) {
    Answer(L"Providers", L"7,4294967295");
    Answer(L"provider4294967295.GetAccountProfiles", L"Ann|ann");
    const AccountCache cache = Refreshed();
    ASSERT_EQ(cache.size(), 2u);
    EXPECT_EQ(cache.begin()->first, -1);
    ASSERT_EQ(cache.at(-1).size(), 1u);
    EXPECT_EQ(cache.at(-1)[0].providerId, 4294967295u);
    EXPECT_STREQ(cache.at(-1)[0].accountKey, L"ann");
}

TEST_F(AccountCacheTest, AppendsTheAccountsOfAProviderThatIsListedTwice) {
    Answer(L"Providers", L"7,7");
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann");
    const AccountCache cache = Refreshed();
    ASSERT_EQ(cache.size(), 1u);
    EXPECT_EQ(cache.at(7).size(), 2u);
}

TEST_F(AccountCacheTest, WalksTheProvidersOnceFromTheStart) {
    Answer(L"Providers", L"7,9");
    Refreshed();
    EXPECT_EQ(FakeModules::Calls(),
              (Lines{L"EnumProvidersReset(manager)", L"EnumStorageProviders(manager)",
                     L"GetProviderId(provider7)", L"GetAccountProfiles(provider7, 16)",
                     L"EnumStorageProviders(manager)", L"GetProviderId(provider9)",
                     L"GetAccountProfiles(provider9, 16)", L"EnumStorageProviders(manager)"}));
}

TEST_F(AccountCacheTest, GivesAProviderWithoutAnAccountAProfileWithItsIdAlone) {
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetAccountProfiles", L"0");
    const AccountCache cache = Refreshed();
    ASSERT_EQ(cache.at(7).size(), 1u);
    obcontract::ProviderProfile expected{};
    expected.providerId = 7;
    EXPECT_EQ(std::memcmp(&cache.at(7)[0], &expected, sizeof expected), 0);
}

TEST_F(AccountCacheTest, AddsNothingForANegativeCount) {
    Answer(L"Providers", L"7,9");
    Answer(L"provider7.GetAccountProfiles", L"-1");
    const AccountCache cache = Refreshed();
    EXPECT_FALSE(cache.contains(7));
    EXPECT_EQ(cache.at(9).size(), 1u);
}

TEST_F(AccountCacheTest, KeepsProvidersThatArentOfferedForStoring) {
    Answer(L"Providers", L"30,31,32,33,34,45,21");
    const AccountCache cache = Refreshed();
    EXPECT_EQ(cache.size(), 7u);
    for (const int id : {30, 31, 32, 33, 34, 45, 21}) EXPECT_TRUE(cache.contains(id)) << id;
}

TEST_F(AccountCacheTest, AsksForSixteenAccountsAtMost) {
    std::wstring accounts = L"label0|key0";
    for (int number = 1; number < 17; ++number) {
        accounts += L";label" + std::to_wstring(number) + L"|key" + std::to_wstring(number);
    }
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetAccountProfiles", accounts);
    const AccountCache cache = Refreshed();
    ASSERT_EQ(cache.at(7).size(), 16u);
    EXPECT_STREQ(cache.at(7).back().accountKey, L"key15");
}

TEST_F(AccountCacheTest, TakesNoMoreThanItMadeRoomForWhenTheProviderReportsMore) {
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetAccountProfiles", L"2000000000");
    EXPECT_EQ(Refreshed().at(7).size(), 16u);
}

TEST_F(AccountCacheTest, StaysEmptyWithoutAProvider) { EXPECT_TRUE(Refreshed().empty()); }

} // namespace
