// Picking files that are in the cloud already.
#pragma once

#include <windows.h>

#include <string>

#include "services/providers/storage/CloudLists.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// Shows the provider's picker and fills the list with what the user picked, whose names have their
// links. False without any; the list's failure is then empty after a cancel, or a sentence. On the
// thread that owns the dialogs.
bool PickFiles(StorageProvider& provider, const std::wstring& preferredAccount,
               OwnDownloadList& list, HWND owner);

} // namespace providers
