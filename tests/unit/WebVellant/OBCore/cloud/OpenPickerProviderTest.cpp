// Which provider serves the cloud button.
#include "OBCore/cloud/OpenPickerProvider.h"

#include "tests/unit/WebVellant/OBCore/cloud/CloudFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;

class OpenPickerProvider : public obtest::CloudFixture {
protected:
    // The id of the answer, 0 for none.
    std::uint32_t Chosen() {
        FakeModules::ForgetCalls();
        auto* provider = obcore::ChooseOpenPickerProvider(job_.OwnedProviderManager);
        calls_ = FakeModules::Calls();
        return provider ? obcore::slots::OnCloudProvider::GetProviderId::Call(provider) : 0;
    }
    static void CanPick(const wchar_t* id, bool can = true) {
        Answer((std::wstring(L"provider") + id + L".HasCapability").c_str(), can ? L"1" : L"1026");
    }
    static void HasAccounts(const wchar_t* id, const wchar_t* accounts = L"L|key") {
        Answer((std::wstring(L"provider") + id + L".GetAccountProfiles").c_str(), accounts);
    }

    Lines calls_;
};

TEST_F(OpenPickerProvider, IsTheDefaultBeforeAllOthers) {
    Answer(L"GetDefaultStorageProvider", L"8|Bob|bob");
    CanPick(L"7");
    HasAccounts(L"7");
    CanPick(L"8");
    EXPECT_EQ(Chosen(), 8u);
    EXPECT_EQ(calls_,
              (Lines{L"GetDefaultStorageProvider(manager)", L"GetProviderInstance(manager, 8, 1)",
                     L"HasCapability(provider8, 1, 1)"}));
}

TEST_F(OpenPickerProvider, IsTheFirstAbleOneWithAnAccountWhenTheDefaultCannotServe) {
    Answer(L"GetDefaultStorageProvider", L"7|Ann|ann");
    CanPick(L"7", false);
    CanPick(L"8");
    HasAccounts(L"8");
    CanPick(L"21");
    HasAccounts(L"21");
    EXPECT_EQ(Chosen(), 8u);
    EXPECT_EQ(calls_,
              (Lines{L"GetDefaultStorageProvider(manager)", L"GetProviderInstance(manager, 7, 1)",
                     L"HasCapability(provider7, 1, 1)", L"EnumProvidersReset(manager)",
                     L"EnumStorageProviders(manager)", L"GetProviderId(provider7)",
                     L"HasCapability(provider7, 1, 1)", L"EnumStorageProviders(manager)",
                     L"GetProviderId(provider8)", L"HasCapability(provider8, 1, 1)",
                     L"GetAccountProfiles(provider8, 16)"}));
}

TEST_F(OpenPickerProvider, IsFoundByTheWalkWithoutADefault) {
    CanPick(L"21");
    HasAccounts(L"21");
    EXPECT_EQ(Chosen(), 21u);
    EXPECT_EQ(Lines(calls_.begin(), calls_.begin() + 3),
              (Lines{L"GetDefaultStorageProvider(manager)", L"GetProviderInstance(manager, 0, 1)",
                     L"EnumProvidersReset(manager)"}));
}

// A manager that gives an instance for the id of an empty profile.
TEST_F(OpenPickerProvider, IsNeverThatOfAnEmptyDefault) {
    Answer(L"Providers", L"0,8");
    CanPick(L"0");
    CanPick(L"8");
    HasAccounts(L"8");
    EXPECT_EQ(Chosen(), 8u);
}

TEST_F(OpenPickerProvider, IsFoundByTheWalkWhenTheDefaultHasNoInstance) {
    Answer(L"GetDefaultStorageProvider", L"99|Zed|zed");
    CanPick(L"8");
    HasAccounts(L"8");
    EXPECT_EQ(Chosen(), 8u);
}

TEST_F(OpenPickerProvider, NeedsAnAccountToBeTakenAheadOfOthers) {
    CanPick(L"7");
    CanPick(L"8");
    HasAccounts(L"7", L"0");
    HasAccounts(L"8", L"-1");
    CanPick(L"21");
    HasAccounts(L"21");
    EXPECT_EQ(Chosen(), 21u);
}

TEST_F(OpenPickerProvider, IsTheFirstOneOfAllAsALastResortAbleOrNot) {
    CanPick(L"7", false);
    CanPick(L"8");
    EXPECT_EQ(Chosen(), 7u);
    Answer(L"Providers", L"8,7");
    EXPECT_EQ(Chosen(), 8u);
}

TEST_F(OpenPickerProvider, IsNoneWithoutProviders) {
    Answer(L"Providers", L"");
    EXPECT_EQ(Chosen(), 0u);
}

TEST_F(OpenPickerProvider, IsNotLookedForAfterOneThatIsNotForStoring) {
    CanPick(L"8");
    HasAccounts(L"8");
    for (const wchar_t* other : {L"30", L"31", L"32", L"33", L"34", L"45"}) {
        Answer(L"Providers", (std::wstring(L"7,") + other + L",8").c_str());
        EXPECT_EQ(Chosen(), 7u) << other;
        EXPECT_TRUE(std::ranges::find(calls_, L"GetProviderId(provider8)") == calls_.end());
        Answer(L"Providers", (std::wstring(other) + L",8").c_str());
        EXPECT_EQ(Chosen(), 0u) << other;
    }
    for (const wchar_t* other : {L"29", L"35", L"44", L"46"}) {
        Answer(L"Providers", (std::wstring(other) + L",8").c_str());
        EXPECT_EQ(Chosen(), 8u) << other;
    }
}

TEST_F(OpenPickerProvider, NeverIsOneThatIsNotForStoringWithoutBeingTheDefault) {
    Answer(L"Providers", L"30");
    CanPick(L"30");
    HasAccounts(L"30");
    EXPECT_EQ(Chosen(), 0u);
    Answer(L"GetDefaultStorageProvider", L"30|L|key");
    EXPECT_EQ(Chosen(), 30u);
}

} // namespace
