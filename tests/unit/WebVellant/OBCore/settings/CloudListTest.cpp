// Which rows the list of the cloud settings has, in which order, and what they show.
#include "OBCore/settings/CloudList.h"

#include <commctrl.h>

#include "tests/support/Allocations.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

namespace {

using obcontract::ProviderProfile;
using obtest::FakeModules;
using obtest::Lines;
using obtest::ProfileOfRowIn;

const std::wstring kAccount = L" (account)"; // string 135

RECT workArea{};

LRESULT CALLBACK SeeWorkArea(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                             DWORD_PTR) {
    if (message == LVM_SETWORKAREAS && wParam == 1) workArea = *reinterpret_cast<RECT*>(lParam);
    return DefSubclassProc(window, message, wParam, lParam);
}

class CloudList : public obtest::CloudFixture {
protected:
    CloudList()
        : list_(CreateWindowExW(0, WC_LISTVIEWW, L"",
                                WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_NOCOLUMNHEADER, 0, 0, 300,
                                200, owner_.Get(), nullptr, nullptr, nullptr)) {
        obcore::PrepareCloudList(List());
    }
    HWND List() const { return list_.Get(); }
    Lines Fill() {
        EXPECT_TRUE(obcore::FillCloudList(List(), options_));
        return obtest::RowsOf(List());
    }
    int ImageOf(int row) const {
        LVITEMW item{};
        item.mask = LVIF_IMAGE;
        item.iItem = row;
        ListView_GetItem(List(), &item);
        return item.iImage;
    }
    HIMAGELIST Images() const { return ListView_GetImageList(List(), LVSIL_SMALL); }
    SIZE ImageSize() const {
        int width = 0;
        int height = 0;
        ImageList_GetIconSize(Images(), &width, &height);
        return {width, height};
    }

private:
    ObLib::UniqueWindow list_;
};

TEST_F(CloudList, IsEmptyWithoutAProvider) { EXPECT_TRUE(Fill().empty()); }

TEST_F(CloudList, HasOneRowForAProviderWithoutAnAccount) {
    OneProvider(L"0");
    EXPECT_EQ(Fill(), Lines{L"Shelf"});
    const ProviderProfile* const profile = ProfileOfRowIn(List(), 0);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->providerId, 7u);
    EXPECT_STREQ(profile->accountKey, L"");
}

TEST_F(CloudList, HasOneRowForAProviderWhoseOneProfileHasNoKey) {
    OneProvider(L"Ann|");
    EXPECT_EQ(Fill(), Lines{L"Shelf"});
    EXPECT_STREQ(ProfileOfRowIn(List(), 0)->accountLabel, L"Ann");
}

TEST_F(CloudList, HasARowWithoutAProfileForAProviderWithANegativeCount) {
    OneProvider(L"-1");
    EXPECT_EQ(Fill(), Lines{L"Shelf"});
    EXPECT_EQ(ProfileOfRowIn(List(), 0), nullptr);
}

TEST_F(CloudList, NamesASingleAccountByTheDescription) {
    OneProvider(L"Ann|ann");
    EXPECT_EQ(Fill(), Lines{L"Shelf" + kAccount});
    EXPECT_STREQ(ProfileOfRowIn(List(), 0)->accountKey, L"ann");
}

TEST_F(CloudList, NamesSeveralAccountsByTheirLabels) {
    OneProvider(L"Ann|ann;Bob|bob;New|");
    EXPECT_EQ(Fill(), (Lines{L"Ann" + kAccount, L"Bob" + kAccount, L"New" + kAccount}));
    EXPECT_STREQ(ProfileOfRowIn(List(), 1)->accountKey, L"bob");
}

TEST_F(CloudList, ShowsSixteenAccountsAndNoMore) {
    for (const int count : {16, 17}) {
        OneProvider(obtest::ManyAccounts(count));
        const Lines rows = Fill();
        ASSERT_EQ(rows.size(), 16u) << count;
        EXPECT_EQ(rows[15], L"label 15" + kAccount);
        EXPECT_STREQ(ProfileOfRowIn(List(), 15)->accountKey, L"key15");
    }
}

TEST_F(CloudList, ShowsFortyProvidersInTheirOrderButThoseThatStoreNothing) {
    std::wstring ids;
    Lines expected;
    for (int id = 60; id > 20; --id) {
        const std::wstring text = std::to_wstring(id);
        ids += (ids.empty() ? L"" : L",") + text;
        Answer(L"provider" + text + L".GetShortDescription", L"Provider " + text);
        const bool stores = (id < 30 || id > 34) && id != 45;
        if (stores) expected.push_back(L"Provider " + text);
    }
    Answer(L"Providers", ids);
    EXPECT_EQ(Fill(), expected);
    EXPECT_EQ(expected.size(), 34u);
}

TEST_F(CloudList, BeginsWithTheDefaultsProviderAndTheDefaultAccount) {
    Answer(L"Providers", L"5,7,9");
    Answer(L"provider5.GetShortDescription", L"Five");
    Answer(L"provider9.GetShortDescription", L"Nine");
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob;Cid|cid");
    Answer(L"GetDefaultStorageProvider", L"7|Bob|bob");
    EXPECT_EQ(Fill(),
              (Lines{L"Bob" + kAccount, L"Ann" + kAccount, L"Cid" + kAccount, L"Five", L"Nine"}));
    EXPECT_STREQ(ProfileOfRowIn(List(), 0)->accountKey, L"bob");
}

TEST_F(CloudList, KeepsTheOrderOfAccountsWhenTheDefaultIsNoneOfThem) {
    Answer(L"Providers", L"5,7");
    Answer(L"provider5.GetShortDescription", L"Five");
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob");
    for (const auto* const chosen : {L"7|Bob|BOB", L"7|Bob|", L"7|Bob|bo"}) {
        Answer(L"GetDefaultStorageProvider", chosen);
        EXPECT_EQ(Fill(), (Lines{L"Ann" + kAccount, L"Bob" + kAccount, L"Five"})) << chosen;
    }
}

TEST_F(CloudList, ReordersNoAccountsOfOtherProviders) {
    Answer(L"Providers", L"5,7");
    Answer(L"provider5.GetAccountProfiles", L"Ann|ann;Bob|bob");
    Answer(L"provider7.GetShortDescription", L"Seven");
    Answer(L"provider7.GetAccountProfiles", L"Bob|bob");
    Answer(L"GetDefaultStorageProvider", L"7|Bob|bob");
    EXPECT_EQ(Fill(), (Lines{L"Seven" + kAccount, L"Ann" + kAccount, L"Bob" + kAccount}));
}

TEST_F(CloudList, LeavesProvider21InItsPlaceAlsoAsTheDefault) {
    Answer(L"Providers", L"5,21");
    Answer(L"provider5.GetShortDescription", L"Five");
    Answer(L"provider21.GetAccountProfiles", L"Ann|ann;Bob|bob");
    Answer(L"GetDefaultStorageProvider", L"21|Bob|bob");
    EXPECT_EQ(Fill(), (Lines{L"Five", L"Ann" + kAccount, L"Bob" + kAccount}));
    EXPECT_TRUE(CallsOf({L"GetProviderInstance"}).empty());
}

TEST_F(CloudList, BeginsWithTheDefaultAlsoWhereItIsNoPlaceToStore) {
    Answer(L"Providers", L"5,30,34,45");
    Answer(L"provider5.GetShortDescription", L"Five");
    for (const std::wstring id : {L"30", L"34", L"45"}) {
        Answer(L"provider" + id + L".GetAccountProfiles", L"Ann|ann;Bob|bob");
        Answer(L"GetDefaultStorageProvider", id + L"|Bob|bob");
        const Lines rows = Fill();
        EXPECT_EQ(rows, (Lines{L"Bob" + kAccount, L"Ann" + kAccount, L"Five"})) << id;
    }
}

TEST_F(CloudList, WalksAtOnceWhenTheDefaultsProviderHasNoInstance) {
    Answer(L"Providers", L"5,7");
    Answer(L"provider5.GetShortDescription", L"Five");
    Answer(L"provider7.GetShortDescription", L"Seven");
    Answer(L"GetDefaultStorageProvider", L"7|Ann|ann");
    Answer(L"GetProviderInstance.7", L"0");
    EXPECT_EQ(Fill(), Lines{L"Five"});
}

TEST_F(CloudList, AsksTheManagerInOrder) {
    Answer(L"Providers", L"5,7");
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann");
    Answer(L"GetDefaultStorageProvider", L"7|Ann|ann");
    Fill();
    const std::wstring reset = L"EnumProvidersReset(manager)";
    const std::wstring next = L"EnumStorageProviders(manager)";
    EXPECT_EQ(CallsOf({L"EnumProvidersReset", L"EnumStorageProviders", L"GetAccountProfiles",
                       L"GetDefaultStorageProvider", L"GetProviderInstance", L"GetShortDescription",
                       L"GetBitmap"}),
              (Lines{reset, next, L"GetAccountProfiles(provider5, 16)", next,
                     L"GetAccountProfiles(provider7, 16)", next,
                     L"GetDefaultStorageProvider(manager)", L"GetProviderInstance(manager, 7, 1)",
                     L"GetShortDescription(provider7, 1, 128)", L"GetBitmap(provider7, 1, 0)",
                     reset, next, L"GetShortDescription(provider5, 1, 128)",
                     L"GetBitmap(provider5, 1, 0)", next, next}));
}

TEST_F(CloudList, CutsTextsToTheirBufferOf128Characters) {
    const std::wstring description(128, L'd');
    OneProvider(L"0");
    Answer(L"provider7.GetShortDescription", description);
    Answer(L"provider7.GetShortDescription.noNul", L"1");
    EXPECT_EQ(Fill(), Lines{description.substr(0, 127)});
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann");
    EXPECT_EQ(Fill(), Lines{description.substr(0, 127)});
    Answer(L"provider7.GetShortDescription", description.substr(0, 120));
    EXPECT_EQ(Fill(), Lines{description.substr(0, 120) + kAccount.substr(0, 7)});
}

TEST_F(CloudList, CutsNoCharacterOfTwoUnitsInHalf) {
    OneProvider(L"0");
    Answer(L"provider7.GetShortDescription", std::wstring(126, L'd') + L"\xD83D\xDE00");
    Answer(L"provider7.GetShortDescription.noNul", L"1");
    EXPECT_EQ(Fill(), Lines{std::wstring(126, L'd')});
}

TEST_F(CloudList, EndsALabelWithItsBufferWhenItHasNoNul) {
    OneProvider(std::wstring(51, L'm') + L"|ann;Bob|bob");
    Answer(L"provider7.GetAccountProfiles.noNul", L"1");
    EXPECT_EQ(Fill(), (Lines{std::wstring(51, L'm') + kAccount, L"Bob" + kAccount}));
}

TEST_F(CloudList, KeepsPercentSignsOfNames) {
    OneProvider(L"100%s|ann;%n|bob");
    EXPECT_EQ(Fill(), (Lines{L"100%s" + kAccount, L"%n" + kAccount}));
}

TEST_F(CloudList, GivesTheRowsOfAProviderOnePicture) {
    Answer(L"Providers", L"5,7,9");
    Answer(L"provider5.GetBitmap", L"1");
    Answer(L"provider9.GetBitmap", L"1");
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann;Bob|bob");
    Answer(L"provider9.GetAccountProfiles", L"Cid|cid;Dan|dan");
    Fill();
    EXPECT_EQ(ImageList_GetImageCount(Images()), 2);
    EXPECT_EQ(ImageOf(0), 0);
    EXPECT_EQ(ImageOf(1), I_IMAGENONE);
    EXPECT_EQ(ImageOf(2), I_IMAGENONE);
    EXPECT_EQ(ImageOf(3), 1);
    EXPECT_EQ(ImageOf(4), 1);
}

int smallIconWidth = 16;
decltype(&GetSystemMetrics) realMetrics = nullptr;
int WINAPI MetricsOf(int index) {
    return index == SM_CXSMICON ? smallIconWidth : realMetrics(index);
}

TEST_F(CloudList, TakesPicturesInTheSizeOfSmallIcons) {
    const obtest::ImportPatch<decltype(&GetSystemMetrics)> patch{"user32.dll", "GetSystemMetrics",
                                                                 &MetricsOf};
    ASSERT_TRUE(patch.Ok());
    realMetrics = patch.Real();
    OneProvider(L"0");
    Answer(L"provider7.GetBitmap", L"1");
    const struct {
        int width;
        int index;
        int size;
    } rows[] = {{16, 0, 16}, {19, 0, 16}, {20, 1, 20}, {23, 1, 20},
                {24, 2, 24}, {31, 2, 24}, {32, 3, 32}, {64, 3, 32}};
    for (const auto& row : rows) {
        smallIconWidth = row.width;
        FakeModules::ForgetCalls();
        Fill();
        EXPECT_EQ(CallsOf({L"GetBitmap"}),
                  Lines{L"GetBitmap(provider7, 1, " + std::to_wstring(row.index) + L")"});
        EXPECT_EQ(ImageSize().cx, row.size);
        EXPECT_EQ(ImageSize().cy, row.size);
        EXPECT_EQ(ImageList_GetImageCount(Images()), 1);
    }
}

TEST_F(CloudList, BeginsItsWorkAreaSixPixelsFromTheLeft) {
    SetWindowSubclass(List(), &SeeWorkArea, 1, 0);
    workArea = {};
    Fill();
    RECT client{};
    GetClientRect(List(), &client);
    EXPECT_EQ(workArea.left, 6);
    EXPECT_EQ(workArea.top, 0);
    EXPECT_EQ(workArea.right, client.right);
    EXPECT_EQ(workArea.bottom, client.bottom);
}

TEST_F(CloudList, HasAColumnAsWideAsItself) {
    OneProvider(obtest::ManyAccounts(16));
    Fill();
    RECT client{};
    GetClientRect(List(), &client);
    EXPECT_EQ(ListView_GetColumnWidth(List(), 0), client.right);
}

bool IsAlive(HIMAGELIST images) {
    int width = 0;
    int height = 0;
    return ImageList_GetIconSize(images, &width, &height) != FALSE;
}

TEST_F(CloudList, IsMadeAnewEachTime) {
    OneProvider(L"Ann|ann;Bob|bob");
    Fill();
    const HIMAGELIST former = Images();
    Answer(L"provider7.GetAccountProfiles", L"Cid|cid");
    EXPECT_EQ(Fill(), Lines{L"Shelf" + kAccount});
    EXPECT_NE(Images(), former);
    EXPECT_FALSE(IsAlive(former));
    EXPECT_STREQ(ProfileOfRowIn(List(), 0)->accountKey, L"cid");
}

TEST_F(CloudList, HasOnlyRowsWithLivingProfilesWhenMemoryRunsOut) {
    OneProvider(L"A label of some length|ann;Another label of some length|bob");
    Answer(L"provider7.GetShortDescription", L"A description of some length");
    const std::size_t failures =
        obtest::FailEachAllocation([&] { obcore::FillCloudList(List(), options_); },
                                   [&] {
                                       const int rows = ListView_GetItemCount(List());
                                       for (int row = 0; row < rows; ++row) {
                                           EXPECT_EQ(ProfileOfRowIn(List(), row)->providerId, 7u);
                                       }
                                   });
    EXPECT_GT(failures, 5u);
    EXPECT_EQ(ListView_GetItemCount(List()), 2);
}

class DefaultRow : public obtest::CloudFixture {
protected:
    bool Is(const std::wstring& chosen, std::uint32_t provider, const wchar_t* key) {
        Answer(L"GetDefaultStorageProvider", chosen);
        ProviderProfile profile{};
        profile.providerId = provider;
        wcscpy(profile.accountKey, key);
        return obcore::IsDefaultRow(options_, &profile);
    }
};

TEST_F(DefaultRow, IsTheOneWithTheDefaultsKey) {
    OneProvider(L"0");
    EXPECT_TRUE(Is(L"7|Ann|ann", 7, L"ann"));
    EXPECT_FALSE(Is(L"7|Ann|ann", 7, L"Ann"));
    EXPECT_FALSE(Is(L"7|Ann|ann", 7, L"ann2"));
    EXPECT_FALSE(Is(L"7|Ann|ann", 7, L""));
}

TEST_F(DefaultRow, IsAnyOfItsProviderWhenTheDefaultHasNoKey) {
    OneProvider(L"0");
    EXPECT_TRUE(Is(L"7|Ann|", 7, L""));
    EXPECT_TRUE(Is(L"7|Ann|", 7, L"ann"));
    EXPECT_FALSE(Is(L"7|Ann|", 8, L""));
}

TEST_F(DefaultRow, IsNoneWithoutADefaultOrItsProvider) {
    OneProvider(L"0");
    EXPECT_FALSE(Is(L"0|Ann|ann", 7, L"ann"));
    EXPECT_TRUE(CallsOf({L"IsProviderSupport"}).empty());
    Answer(L"IsProviderSupport.7.1", L"0");
    EXPECT_FALSE(Is(L"7|Ann|ann", 7, L"ann"));
    EXPECT_EQ(CallsOf({L"IsProviderSupport"}), Lines{L"IsProviderSupport(manager, 7, 1)"});
    Answer(L"IsProviderSupport.7.1", L"1");
    EXPECT_FALSE(obcore::IsDefaultRow(options_, nullptr));
}

} // namespace
