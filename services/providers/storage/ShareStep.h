// Links for the files that were uploaded in this run.
#pragma once

#include <memory>

#include "services/providers/storage/CloudLists.h"
#include "services/providers/storage/StorageRun.h"

namespace providers {

// Gives each file of the list its share link, in front of the window of the last upload. Shows a
// failure, and lets the user try again; shows the password that was made for a link. True when all
// files have a link; false, with a sentence, for an empty list. A file that has its link already
// isn't shared again. On the thread that owns the dialogs, whose messages are dispatched meanwhile.
bool ShareFiles(const std::shared_ptr<StorageRun>& run, OwnDownloadList& list);

} // namespace providers
