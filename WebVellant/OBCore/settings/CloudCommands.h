// What the cloud settings do with accounts: by their buttons, and when another row is selected.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "OBCore/options/OBOptions.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Of one opening of the cloud settings; its caller has it on the stack.
struct ConfigureCloudContext {
    OBOptions* options; // not owned; its ProviderManager is initialised
    // Of the default row. The dialog's own, from its opening to WM_DESTROY.
    HFONT boldFont = nullptr;
};

// Lets the manager log `profile` in; it shows its window above `window` and its own messages.
// Returns the manager's result. After a login a profile that still has no accountKey becomes the
// provider's newest account; it stays as it is when the provider reports none.
bool LoginProfile(HWND window, const ConfigureCloudContext& context,
                  obcontract::ProviderProfile& profile);

// Logs the selected row's account in, makes it the default where its provider is the default
// without an account, and fills the list anew. Nothing without a selected row.
void OnCloudLogin(HWND window, const ConfigureCloudContext& context);

// Sets the account buttons of the dialog `window` when a row's selection has come or gone.
void OnCloudSelectionChanged(HWND window, const ConfigureCloudContext& context,
                             const NMLISTVIEW& change);

// The account button `id` of the dialog `window`. False: it is none of them. The manager may show
// windows, and the dialog may have gone when the call returns.
bool OnCloudButton(HWND window, const ConfigureCloudContext& context, int id);

void DisableAccountButtons(HWND window);

} // namespace obcore
