#include "OBCore/settings/CloudCommands.h"

#include <algorithm>
#include <iterator>

#include "OBCore/chooser/AccountCache.h"
#include "OBCore/chooser/CloudRows.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/settings/CloudList.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/DialogItems.h"

using obcontract::CloudProvider;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;
using OnProvider = obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

constexpr char kSource[] = "OBCore\\ObConfigureCloudServiceDialog";
// A number for each check of this file, in the order of its functions.
constexpr int kLoginLine = 1;
constexpr int kLogoutLine = 2;
constexpr int kDefaultLine = 3;
constexpr int kAddLine = 4;
constexpr int kManageLine = 5;
constexpr int kSelectionLine = 6;

constexpr int kNoRow = -1;
constexpr int kAccountButtons[] = {OB_CLOUD_LOGIN, OB_CLOUD_LOGOUT, OB_CLOUD_SET_DEFAULT,
                                   OB_CLOUD_ADD_ACCOUNT, OB_CLOUD_MANAGE};

// What an account button works on.
struct Action {
    HWND window;
    const ConfigureCloudContext& context;
    int row;                  // the selected one, or kNoRow
    ProviderProfile* profile; // of that row; null when it has none

    [[nodiscard]] ProviderManagerHandle Manager() const { return context.options->ProviderManager; }
};

HWND ListOf(HWND window) { return GetDlgItem(window, OB_CLOUD_ACCOUNTS); }

Action ActionOn(HWND window, const ConfigureCloudContext& context) {
    const HWND list = ListOf(window);
    const int row = ListView_GetNextItem(list, kNoRow, LVNI_SELECTED);
    return {window, context, row, row >= 0 ? ProfileOfRow(list, row) : nullptr};
}

CloudProvider* InstanceOf(const ConfigureCloudContext& context, const ProviderProfile* profile) {
    if (!profile) return nullptr;
    return ProviderManager().GetProviderInstance(context.options->ProviderManager,
                                                 profile->providerId, ProviderKind::Storage);
}

const wchar_t* KeyOf(const ProviderProfile* profile) { return profile ? profile->accountKey : L""; }

bool HasProfile(const Action& action, int line) {
    return Check(action.profile != nullptr, "profile != NULL", kSource, line);
}

bool HasInstance(const CloudProvider* provider, int line) {
    return Check(provider != nullptr, "cloud_svc_ptr != NULL", kSource, line);
}

bool IsAuthorized(const ConfigureCloudContext& context, CloudProvider* provider,
                  const ProviderProfile* profile, HWND window) {
    return ProviderManager().IsAuthorized2(context.options->ProviderManager, provider,
                                           KeyOf(profile), window) != 0;
}

// Or the last row, when there are fewer by now.
void SelectRow(HWND list, int row) {
    const int nearest = std::min(row, ListView_GetItemCount(list) - 1);
    if (nearest < 0) return;
    ListView_SetItemState(list, nearest, LVIS_SELECTED | LVIS_FOCUSED,
                          LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(list, nearest, FALSE);
}

// A control that is disabled loses the keyboard, which nothing in the dialog would have then.
void GiveKeyboardBack(HWND window, HWND former) {
    if (GetFocus() == former || !IsChild(window, former)) return;
    const HWND next = IsWindowEnabled(former) ? former : ListOf(window);
    SendMessageW(window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
}

// The dialog may have been closed while the manager showed its window.
void ShowAnew(const Action& action, int row) {
    if (!IsWindow(action.window)) return;
    const HWND focus = GetFocus();
    DisableAccountButtons(action.window);
    FillCloudList(ListOf(action.window), *action.context.options);
    SelectRow(ListOf(action.window), row);
    GiveKeyboardBack(action.window, focus);
}

// A provider that is the default without an account has one now.
void CompleteDefault(ProviderManagerHandle manager, const ProviderProfile& profile) {
    ProviderProfile chosen{};
    ProviderManager().GetDefaultStorageProvider(manager, &chosen);
    if (chosen.accountKey[0] != L'\0' || chosen.providerId != profile.providerId) return;
    ProviderManager().SetDefaultStorageProvider(manager, &profile);
}

void LogIn(const Action& action) {
    if (action.row == kNoRow) return;
    if (HasProfile(action, kLoginLine) &&
        LoginProfile(action.window, action.context, *action.profile)) {
        CompleteDefault(action.Manager(), *action.profile);
    }
    ShowAnew(action, action.row);
}

void LogOut(const Action& action) {
    if (HasProfile(action, kLogoutLine)) {
        CloudProvider* const provider = InstanceOf(action.context, action.profile);
        if (IsAuthorized(action.context, provider, action.profile, action.window)) {
            ProviderManager().Logout2(action.Manager(), provider, action.profile->accountKey,
                                      action.window);
        }
    }
    ShowAnew(action, action.row);
}

// Whatever comes of the login: the user's choice of a provider counts without an account too.
void SetDefault(const Action& action) {
    CloudProvider* const provider = InstanceOf(action.context, action.profile);
    HasInstance(provider, kDefaultLine);
    if (action.profile) {
        if (!IsAuthorized(action.context, provider, action.profile, action.window)) {
            LoginProfile(action.window, action.context, *action.profile);
        }
        ProviderManager().SetDefaultStorageProvider(action.Manager(), action.profile);
    }
    ShowAnew(action, 0);
}

// The row is that of a new account during the login; the list is filled anew in any case.
void AddAccount(const Action& action) {
    if (action.row == kNoRow) return;
    if (HasProfile(action, kAddLine)) {
        std::ranges::fill(action.profile->accountKey, L'\0');
        std::ranges::fill(action.profile->accountLabel, L'\0');
        LoginProfile(action.window, action.context, *action.profile);
    }
    ShowAnew(action, action.row);
}

void Manage(const Action& action) {
    if (action.row == kNoRow) return;
    if (HasProfile(action, kManageLine)) {
        CloudProvider* const provider = InstanceOf(action.context, action.profile);
        // A missing one is reported once, by the selection that follows.
        if (provider) {
            OnProvider::ManageAccount::Call(provider, action.window, action.profile->accountKey);
        }
    }
    ShowAnew(action, action.row);
}

struct Button {
    int id;
    void (*press)(const Action& action);
};

constexpr Button kButtons[] = {
    {OB_CLOUD_LOGIN, &LogIn},
    {OB_CLOUD_LOGOUT, &LogOut},
    {OB_CLOUD_SET_DEFAULT, &SetDefault},
    {OB_CLOUD_ADD_ACCOUNT, &AddAccount},
    {OB_CLOUD_MANAGE, &Manage},
};

// What the account buttons are for the row of `profile`.
void ShowButtonsOf(HWND window, const ConfigureCloudContext& context,
                   const ProviderProfile* profile) {
    CloudProvider* const provider = InstanceOf(context, profile);
    // The failed check only shows its box: the manager is asked all the same.
    HasInstance(provider, kSelectionLine);
    if (IsAuthorized(context, provider, profile, nullptr)) {
        SetEnabled(window, OB_CLOUD_LOGOUT, true);
        SetEnabled(window, OB_CLOUD_ADD_ACCOUNT, true);
    } else {
        SetEnabled(window, OB_CLOUD_LOGIN, true);
    }
    ProfileArray profiles{};
    if (provider && ReadAccountProfiles(provider, profiles) > 1)
        SetEnabled(window, OB_CLOUD_MANAGE, true);
    SetEnabled(window, OB_CLOUD_SET_DEFAULT, true);
}

} // namespace

bool LoginProfile(HWND window, const ConfigureCloudContext& context, ProviderProfile& profile) {
    CloudProvider* const provider = InstanceOf(context, &profile);
    if (!ProviderManager().Login2(context.options->ProviderManager, provider, profile.accountKey,
                                  profile.accountLabel, window)) {
        return false;
    }
    if (provider && profile.accountKey[0] == L'\0') TakeNewestAccount(provider, profile);
    return true;
}

void OnCloudLogin(HWND window, const ConfigureCloudContext& context) {
    LogIn(ActionOn(window, context));
}

void OnCloudSelectionChanged(HWND window, const ConfigureCloudContext& context,
                             const NMLISTVIEW& change) {
    const bool was = (change.uOldState & LVIS_SELECTED) != 0;
    const bool is = (change.uNewState & LVIS_SELECTED) != 0;
    if (was && !is) DisableAccountButtons(window);
    if (was || !is || change.iItem < 0) return;
    ShowButtonsOf(window, context, ProfileOfRow(ListOf(window), change.iItem));
}

bool OnCloudButton(HWND window, const ConfigureCloudContext& context, int id) {
    const auto* const button = std::ranges::find(kButtons, id, &Button::id);
    if (button == std::end(kButtons)) return false;
    button->press(ActionOn(window, context));
    return true;
}

void DisableAccountButtons(HWND window) {
    for (const int id : kAccountButtons) SetEnabled(window, id, false);
}

} // namespace obcore
