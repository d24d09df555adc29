// The upload of a list to its account.
#pragma once

#include <windows.h>

#include "services/providers/storage/CloudLists.h"
#include "services/providers/storage/StorageRun.h"

namespace providers {

// Uploads the files of the list that aren't stored yet, one after the other, until one isn't
// stored. True when all are. Otherwise the account has an error, and the callback, which may be
// null, is told of a name that is taken and of a cancel. On the thread that owns the dialogs.
bool UploadFiles(StorageRun& run, OwnUploadList& list, ObPVX::ObPvxCallback* callback,
                 const UploadTexts& texts, HWND owner);

} // namespace providers
