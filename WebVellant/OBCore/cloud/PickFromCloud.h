// The cloud button's action: the user picks files that are in a cloud account already, and the page
// gets a text with their names in place of a file. No content of a file comes to this system.
#pragma once

#include <windows.h>

#include "OBCore/cloud/CloudButtonHook.h"

namespace obcore {

// Lets the user pick in the provider's own window, which is modal to `dialog`, the file dialog, and
// stores the text for the page in record.linkText. True when a text was stored: the caller then
// closes the file dialog. False after a cancel, a failure, which was shown, a pick of nothing, or
// without a provider: the file dialog stays open. No text is stored then, nor when an exception
// leaves this function. On the dialog's thread; the record's manager must be initialised.
bool PickFromCloud(CloudButtonHook& record, HWND dialog);

// Makes the account of the list's first item the default one. Without an item nothing changes.
void AdoptPickedProfile(obcontract::ProviderManagerHandle manager, obcontract::DownloadList* list);

} // namespace obcore
