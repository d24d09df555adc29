// The upload of a file to a folder.
#pragma once

#include "services/providers/folder/FolderAccount.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// Copies the file to a temporary name of its own in its target folder, checks its length, and gives
// it its name, without replacing a file. Folders on the way are made. Unless the result is Done,
// nothing that the upload made is left, as far as the folder can still be reached; nothing else is
// ever changed. On the upload's own thread. May throw std::bad_alloc.
UploadResult UploadToFolder(const FolderSettings& account, const UploadFile& file,
                            UploadProgress& progress);

} // namespace providers
