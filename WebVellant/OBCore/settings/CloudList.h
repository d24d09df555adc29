// The list of the cloud settings: every storage provider and account, the default one on top.
#pragma once

#include <windows.h>

#include "OBCore/options/OBOptions.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Gives the list view `list` a column, where its description has none, and a tip for a text that
// doesn't fit. Once, before the first FillCloudList.
void PrepareCloudList(HWND list);

// Rebuilds the accounts of the cloud settings, which are kept for the process, and the rows of
// their list view, each with its provider's picture; nothing is selected then. A row's parameter is
// its profile, which ProfileOfRow returns, null for a provider that reports no account list at all;
// both are valid until the next call. The providers are those of options.ProviderManager; no other
// walk over them may be under way. On the dialog's thread; throws std::bad_alloc with fewer rows.
// True.
bool FillCloudList(HWND list, const OBOptions& options);

// Takes the pictures back, which not every list view destroys with itself. While the window is
// there, after the last FillCloudList.
void EndCloudList(HWND list);

// Whether a row shows the default account, or the provider that is the default without an account.
// `profile` is the row's; null is never the default.
bool IsDefaultRow(const OBOptions& options, const obcontract::ProviderProfile* profile);

} // namespace obcore
