// The upload of a file to a folder.
#pragma once

#include <string>

#include "services/providers/folder/FolderAccount.h"
#include "services/providers/folder/FolderPatience.h"
#include "services/providers/storage/PartNotes.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// How an upload looks after what it stores.
struct FolderUploadCare {
    const PartNotes* notes = nullptr; // where it notes its temporary file; null: nowhere
    std::wstring accountKey = {};     // for that
    FolderPatience patience = {};
};

// Copies the file to a temporary name of its own in its target folder, checks its length, and gives
// it its name, without replacing a file. Folders on the way are made. After a break
// of the connection it waits for the folder and goes on. Unless the result is Done, nothing that
// the upload made is left, as far as the folder can still be reached; nothing else is ever changed.
// On the upload's own thread. May throw std::bad_alloc.
UploadResult UploadToFolder(const FolderSettings& account, const UploadFile& file,
                            UploadProgress& progress, const FolderUploadCare& care = {});

} // namespace providers
