#include "OBCore/settings/CloudList.h"

#include <commctrl.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "OBCore/chooser/AccountCache.h"
#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

using obcontract::CloudProvider;
using obcontract::kArchivesOnlyProvider;
using obcontract::kNoProvider;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;
using OnProvider = obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

constexpr std::size_t kTextCapacity = 128; // wide characters of a row, with the NUL
constexpr int kAccountTextCapacity = 51;
constexpr int kLeftOfWorkArea = 6;              // pixels
constexpr int kImageSizes[] = {16, 20, 24, 32}; // pixels, by the size index of GetBitmap
constexpr int kMoreImages = 8;                  // by which the images grow

// Rows point into it. Dialog's thread only.
AccountCache accounts;

// A list that is being filled.
struct Filling {
    HWND list;
    HIMAGELIST images;
    std::uint32_t sizeIndex;
    std::wstring accountText;
    int nextRow = 0;
};

ProviderProfile DefaultProfile(ProviderManagerHandle manager) {
    ProviderProfile profile{};
    ProviderManager().GetDefaultStorageProvider(manager, &profile);
    return profile;
}

// By the whole key; a key that fills its buffer ends with it.
bool HasKey(const ProviderProfile& profile, const ProviderProfile& other) {
    return std::wcsncmp(profile.accountKey, other.accountKey, std::size(other.accountKey)) == 0;
}

bool IsWithoutKey(const ProviderProfile& profile) { return profile.accountKey[0] == L'\0'; }

bool HasNoAccount(const std::vector<ProviderProfile>& profiles) {
    return profiles.empty() || (profiles.size() == 1 && IsWithoutKey(profiles.front()));
}

std::wstring DescriptionOf(CloudProvider* provider) {
    wchar_t text[kTextCapacity] = L"";
    std::uint32_t capacity = kTextCapacity;
    ProviderManager().GetShortDescription(provider, 1, text, &capacity);
    return TextIn(text);
}

// As much as fits, without half of a surrogate pair at the end.
std::wstring CutToRow(std::wstring text) {
    std::size_t kept = std::min(text.size(), kTextCapacity - 1);
    if (kept < text.size() && IS_HIGH_SURROGATE(text[kept - 1])) --kept;
    text.resize(kept);
    return text;
}

// The number of the provider's picture in the images; a provider without one has none.
int AddPicture(const Filling& filling, CloudProvider* provider) {
    const ObLib::UniqueBitmap bitmap(ProviderManager().GetBitmap(provider, 1, filling.sizeIndex));
    const int image = bitmap ? ImageList_Add(filling.images, bitmap.Get(), nullptr) : -1;
    return image >= 0 ? image : I_IMAGENONE;
}

void AddRow(Filling& filling, std::wstring text, int image, const ProviderProfile* profile) {
    text = CutToRow(std::move(text));
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.iItem = filling.nextRow++;
    item.pszText = text.data();
    item.iImage = image;
    item.lParam = reinterpret_cast<LPARAM>(profile);
    ListView_InsertItem(filling.list, &item);
}

// The rows of one provider. `top`: the account of this key comes before the others; null for none.
void AddProvider(Filling& filling, CloudProvider* provider, const ProviderProfile* top) {
    const std::uint32_t id = OnProvider::GetProviderId::Call(provider);
    const std::vector<ProviderProfile>& profiles = accounts[static_cast<std::int32_t>(id)];
    const std::wstring description = DescriptionOf(provider);
    const int image = AddPicture(filling, provider);
    if (HasNoAccount(profiles)) {
        return AddRow(filling, description, image, profiles.empty() ? nullptr : &profiles.front());
    }
    const auto add = [&](const ProviderProfile& profile) {
        const bool isOnly = profiles.size() == 1;
        AddRow(filling, (isOnly ? description : TextIn(profile.accountLabel)) + filling.accountText,
               image, &profile);
    };
    const auto isTop = [top](const ProviderProfile& profile) { return HasKey(profile, *top); };
    const auto first = top ? std::ranges::find_if(profiles, isTop) : profiles.end();
    if (first != profiles.end()) add(*first);
    for (auto profile = profiles.begin(); profile != profiles.end(); ++profile) {
        if (profile != first) add(*profile);
    }
}

// The archives-only provider has its place in the walk, also as the default.
bool GoesFirst(std::uint32_t defaultId) {
    return defaultId != kNoProvider && defaultId != kArchivesOnlyProvider;
}

void AddAllProviders(Filling& filling, ProviderManagerHandle manager) {
    const ProviderProfile chosen = DefaultProfile(manager);
    const bool goesFirst = GoesFirst(chosen.providerId);
    CloudProvider* const first = goesFirst ? ProviderManager().GetProviderInstance(
                                                 manager, chosen.providerId, ProviderKind::Storage)
                                           : nullptr;
    if (first) AddProvider(filling, first, &chosen);
    ProviderManager().EnumProvidersReset(manager);
    while (CloudProvider* const provider = ProviderManager().EnumStorageProviders(manager)) {
        const std::uint32_t id = OnProvider::GetProviderId::Call(provider);
        if (!IsOfferedForStoring(id) || (goesFirst && id == chosen.providerId)) continue;
        AddProvider(filling, provider, nullptr);
    }
}

bool HasColumn(HWND list) {
    LVCOLUMNW column{.mask = LVCF_WIDTH};
    return ListView_GetColumn(list, 0, &column) != FALSE;
}

// The column is as wide as the list, so that a click anywhere in a row counts.
void FitColumn(HWND list) {
    RECT client{};
    GetClientRect(list, &client);
    ListView_SetColumnWidth(list, 0, static_cast<int>(client.right));
}

void SetWorkArea(HWND list) {
    RECT area{};
    GetClientRect(list, &area);
    area.left += kLeftOfWorkArea;
    ListView_SetWorkAreas(list, 1, &area);
}

// Owned here until the next ones come, or until EndCloudList.
void SetImages(HWND list, ObLib::UniqueImageList images) {
    const ObLib::UniqueImageList former(ListView_SetImageList(list, images.Release(), LVSIL_SMALL));
}

// Without a painting for each row.
void FillUnseen(HWND list, const OBOptions& options) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    const ObLib::ScopeExit show([list] {
        SendMessageW(list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(list, nullptr, TRUE);
    });
    ListView_DeleteAllItems(list); // before the accounts that its rows point to
    const std::uint32_t sizeIndex = BitmapSizeIndex(GetSystemMetrics(SM_CXSMICON));
    const int size = kImageSizes[sizeIndex];
    ObLib::UniqueImageList images(ImageList_Create(size, size, ILC_COLOR32, 0, kMoreImages));
    SetWorkArea(list);
    accounts.clear();
    RefreshAccountCache(accounts, options.ProviderManager);
    Filling filling{list, images.Get(), sizeIndex,
                    LoadText(TextId::RowOfAccount, kAccountTextCapacity)};
    AddAllProviders(filling, options.ProviderManager);
    SetImages(list, std::move(images));
}

} // namespace

void PrepareCloudList(HWND list) {
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_LABELTIP, LVS_EX_LABELTIP);
    if (HasColumn(list)) return;
    LVCOLUMNW column{.mask = LVCF_FMT, .fmt = LVCFMT_LEFT};
    ListView_InsertColumn(list, 0, &column);
}

void EndCloudList(HWND list) { SetImages(list, ObLib::UniqueImageList()); }

bool FillCloudList(HWND list, const OBOptions& options) {
    FillUnseen(list, options);
    FitColumn(list);
    return true;
}

bool IsDefaultRow(const OBOptions& options, const ProviderProfile* profile) {
    const ProviderProfile chosen = DefaultProfile(options.ProviderManager);
    if (!profile || chosen.providerId == kNoProvider) return false;
    if (!ProviderManager().IsProviderSupport(options.ProviderManager, chosen.providerId,
                                             ProviderKind::Storage)) {
        return false;
    }
    return IsWithoutKey(chosen) ? chosen.providerId == profile->providerId
                                : HasKey(*profile, chosen);
}

} // namespace obcore
