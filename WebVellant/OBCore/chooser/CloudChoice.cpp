#include "OBCore/chooser/CloudChoice.h"

#include <string>

#include "OBCore/chooser/CloudRows.h"
#include "OBCore/chooser/LoginChosenProfile.h"
#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/options/OBAttachJob.h"
#include "ObLib/Src/Win32/Guarded.h"

using obcontract::CloudProvider;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;
using OnProvider = obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

constexpr int kButtonCapacity = 64; // wide characters, with the NUL
constexpr int kRowChangedLine = 1;

OBAttachJob& JobOf(HWND window) {
    return *reinterpret_cast<OBAttachJob*>(GetWindowLongPtrW(window, DWLP_USER));
}

HWND ListOf(HWND window) { return GetDlgItem(window, OB_CHOOSER_LIST); }

std::wstring ButtonText(TextId id) { return LoadText(id, kButtonCapacity); }

// The profile of the first row whose state image passes; null when no row does, or that row has no
// profile.
template <class Test>
ProviderProfile* FirstProfile(HWND list, Test passes) {
    const int rows = ListView_GetItemCount(list);
    for (int row = 0; row < rows; ++row) {
        if (passes(TickOfRow(list, row))) return ProfileOfRow(list, row);
    }
    return nullptr;
}

void UntickOthers(HWND list, int ticked) {
    const int rows = ListView_GetItemCount(list);
    for (int row = 0; row < rows; ++row) {
        if (row == ticked) continue;
        ListView_SetItemState(list, row, INDEXTOSTATEIMAGEMASK(kUntickedImage),
                              LVIS_STATEIMAGEMASK);
    }
}

bool IsLoggedIn(ProviderManagerHandle manager, const ProviderProfile& profile) {
    if (profile.accountKey[0] == L'\0') return false;
    CloudProvider* const provider = ProviderOfProfile(manager, profile, kRowChangedLine);
    return provider && OnProvider::IsAccountLoggedIn::Call(provider, profile.accountKey) != 0;
}

// The button's text is the state that the user saw.
bool NeedsLogin(HWND window) {
    wchar_t text[kButtonCapacity] = L"";
    GetDlgItemTextW(window, OB_CHOOSER_CONTINUE, text, kButtonCapacity);
    return text != ButtonText(TextId::ContinueLoggedIn);
}

bool MakeDefault(HWND window, ProviderManagerHandle manager, const ProviderProfile& profile) {
    if (IsDlgButtonChecked(window, OB_CHOOSER_DEFAULT) != BST_CHECKED) return true;
    return ProviderManager().SetDefaultStorageProvider(manager, &profile) != 0;
}

} // namespace

void OnListRowChanged(HWND window, const NMLISTVIEW& change) {
    const UINT image = StateImageOf(change.uNewState);
    if (image != kUntickedImage && image != kTickedImage) return;
    // Without memory nothing is known of the row: the button must not keep its text for another
    // one, and the other rows lose their ticks all the same.
    if (!ObLib::RanGuarded([window] { OnSelectRowChanged(window); }))
        EnableWindow(GetDlgItem(window, OB_CHOOSER_CONTINUE), FALSE);
    if (image == kTickedImage && StateImageOf(change.uOldState) == kUntickedImage) {
        UntickOthers(ListOf(window), change.iItem);
    }
}

void OnSelectRowChanged(HWND window) {
    const ProviderProfile* const profile =
        FirstProfile(ListOf(window), [](UINT image) { return image != kUntickedImage; });
    EnableWindow(GetDlgItem(window, OB_CHOOSER_CONTINUE), profile != nullptr);
    const bool ready = profile && IsLoggedIn(JobOf(window).OwnedProviderManager, *profile);
    const TextId text = ready ? TextId::ContinueLoggedIn : TextId::ContinueByLogin;
    SetDlgItemTextW(window, OB_CHOOSER_CONTINUE, ButtonText(text).c_str());
}

void OnSelectOk(HWND window) {
    OBAttachJob& job = JobOf(window);
    const ProviderManagerHandle manager = job.OwnedProviderManager;
    ProviderProfile* const profile =
        FirstProfile(ListOf(window), [](UINT image) { return image == kTickedImage; });
    if (!profile) return;
    if (NeedsLogin(window) && !LoginChosenProfile(window, manager, *profile)) return;
    if (!MakeDefault(window, manager, *profile)) return;
    job.SelectedStorageProvider = *profile;
    EndDialog(window, kProviderChosen);
}

} // namespace obcore
