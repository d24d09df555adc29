// The rows of the chooser: providers and accounts, each with its free space where it is known.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "OBCore/options/OBAttachJob.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Rebuilds the chooser's accounts, which are kept for the process, and the rows of its list view
// with check boxes. Provider 21 comes first where there is one; ids that aren't offered for storing
// have no row. On the thread of the dialog `window`. Throws std::bad_alloc.
void SelectCloudRows(HWND window, const OBAttachJob& job);

// Inserts the rows of one provider, `name`, into the list view: one for each account, or one
// without space when there is none. `item` is the record of the insertions; its row number counts
// on. A row's parameter is its profile in the chooser's accounts, null when there is none.
void AddProviderRows(HWND list, LVITEMW& item, const std::wstring& name,
                     obcontract::CloudProvider* provider);

// State images of the list view's check boxes.
inline constexpr UINT kUntickedImage = 1;
inline constexpr UINT kTickedImage = 2;

constexpr UINT StateImageOf(UINT state) { return (state & LVIS_STATEIMAGEMASK) >> 12; }

// The state image of a row.
UINT TickOfRow(HWND list, int row);

// The profile of a row; null when the row has none or there is no such row. Valid until the next
// SelectCloudRows.
obcontract::ProviderProfile* ProfileOfRow(HWND list, int row);

// Whether a row is one of an account that the user has logged in to at some time.
bool HasAccount(HWND list);

} // namespace obcore
