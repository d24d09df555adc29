// What the cloud step does to the result on the disk. A picked archive is the user's own file in
// the user's own folder: none of this touches it.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Whether job.ResultPath is in the folder that this run has made for it. The temporary folder
// itself, which a run names when it can't make a folder there, isn't such a folder.
bool IsOwnResult(const OBAttachJob& job);

// For a provider that takes archives only. Where the name of the result isn't that of an archive,
// the name on the cloud gets the extension that the zip's kind has; so do the file and the paths
// that name it, when the result is the run's own. A file that can't be renamed isn't reported: the
// upload then finds none. Returns the path under which that file is left, else nothing.
std::wstring GiveArchiveExtension(OBAttachJob& job);

// After a failed upload: clears the result and its folder, when they are the run's own, and with
// them the file of the run at `left`, if that isn't empty.
void WipeOwnResult(const OBAttachJob& job, const std::wstring& left = {});

} // namespace obcore
