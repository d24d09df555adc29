#include "OBCore/chooser/CloudRows.h"

#include <algorithm>
#include <vector>

#include "OBCore/chooser/AccountCache.h"
#include "OBCore/chooser/ByteSizeText.h"
#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"

using obcontract::CloudProvider;
using obcontract::kArchivesOnlyProvider;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;
using obcontract::SizeUnknown;
using OnProvider = obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

constexpr int kUnknownSpaceCapacity = 51;  // wide characters, with the NUL
constexpr std::size_t kLabelCapacity = 51; // the same; of the name or label in a row

// Rows point into it. Dialog's thread only.
AccountCache accounts;

// As much as fits, without half of a surrogate pair at the end.
std::wstring CutLabel(const std::wstring& text) {
    std::size_t kept = std::min(text.size(), kLabelCapacity - 1);
    if (kept > 0 && kept < text.size() && IS_HIGH_SURROGATE(text[kept - 1])) --kept;
    return text.substr(0, kept);
}

std::wstring RowLabel(const ProviderProfile& profile, const std::wstring& name, bool isOneOfMany) {
    return CutLabel(isOneOfMany ? TextIn(profile.accountLabel) : name);
}

std::wstring SpaceText(std::int64_t freeBytes, std::int64_t totalBytes) {
    if (freeBytes == SizeUnknown && totalBytes == SizeUnknown) {
        return LoadText(TextId::SpaceUnknown, kUnknownSpaceCapacity);
    }
    std::wstring text = LoadText(TextId::FreeOfTotal);
    FillIn(text, L"%ls", ByteSizeText(std::max<std::int64_t>(freeBytes, 0)));
    FillIn(text, L"%ls", ByteSizeText(totalBytes));
    return text;
}

// The values decide alone, so the result of the call isn't looked at; values that the provider
// leaves as they are count as unknown.
std::wstring SpaceOf(CloudProvider* provider, const ProviderProfile& profile) {
    std::int64_t freeBytes = SizeUnknown;
    std::int64_t totalBytes = SizeUnknown;
    OnProvider::GetAccountSpace::Call(provider, profile.accountKey, &freeBytes, &totalBytes);
    return SpaceText(freeBytes, totalBytes);
}

void AddRow(HWND list, LVITEMW& item, std::wstring text, ProviderProfile* profile) {
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.pszText = text.data();
    item.lParam = reinterpret_cast<LPARAM>(profile);
    ListView_InsertItem(list, &item);
    ++item.iItem;
}

void AddProvider(HWND list, LVITEMW& item, CloudProvider* provider) {
    AddProviderRows(list, item, DisplayNameOf(provider), provider);
}

bool IsOfferedInTheWalk(CloudProvider* provider) {
    const std::uint32_t id = OnProvider::GetProviderId::Call(provider);
    return IsOfferedForStoring(id) && id != kArchivesOnlyProvider;
}

void AddAllProviders(HWND list, ProviderManagerHandle manager) {
    LVITEMW item{};
    CloudProvider* const first = ProviderManager().GetProviderInstance(
        manager, kArchivesOnlyProvider, ProviderKind::Storage);
    if (first) AddProvider(list, item, first);
    ProviderManager().EnumProvidersReset(manager);
    while (CloudProvider* const provider = ProviderManager().EnumStorageProviders(manager)) {
        if (IsOfferedInTheWalk(provider)) AddProvider(list, item, provider);
    }
}

} // namespace

void SelectCloudRows(HWND window, const OBAttachJob& job) {
    const HWND list = GetDlgItem(window, OB_CHOOSER_LIST);
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    ListView_DeleteAllItems(list); // before the accounts that its rows point to
    accounts.clear();
    RefreshAccountCache(accounts, job.OwnedProviderManager);
    AddAllProviders(list, job.OwnedProviderManager);
}

void AddProviderRows(HWND list, LVITEMW& item, const std::wstring& name, CloudProvider* provider) {
    const std::uint32_t id = OnProvider::GetProviderId::Call(provider);
    std::vector<ProviderProfile>& profiles = accounts[static_cast<std::int32_t>(id)];
    if (profiles.empty()) return AddRow(list, item, name, nullptr);
    if (profiles.size() == 1 && profiles.front().accountKey[0] == L'\0') {
        return AddRow(list, item, name, &profiles.front());
    }
    for (ProviderProfile& profile : profiles) {
        AddRow(list, item,
               RowLabel(profile, name, profiles.size() >= 2) + SpaceOf(provider, profile),
               &profile);
    }
}

UINT TickOfRow(HWND list, int row) {
    return StateImageOf(ListView_GetItemState(list, row, LVIS_STATEIMAGEMASK));
}

ProviderProfile* ProfileOfRow(HWND list, int row) {
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    if (!ListView_GetItem(list, &item)) return nullptr;
    return reinterpret_cast<ProviderProfile*>(item.lParam);
}

bool HasAccount(HWND list) {
    const int rows = ListView_GetItemCount(list);
    for (int row = 0; row < rows; ++row) {
        const ProviderProfile* const profile = ProfileOfRow(list, row);
        if (profile && profile->accountKey[0] != L'\0') return true;
    }
    return false;
}

} // namespace obcore
