// The last steps of a run whose result is an archive: attached, or sent as a link.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Decides where job.ResultPath goes and takes it there. 1: the archive is attached. 0: the page
// receives the content of `linkText` after an upload, or the user gave no provider and nothing goes
// out. Dialogs are modal to job.ParentWindow; sends the usage report where the run ends normally.
int RouteArchive(OBAttachJob& job, std::wstring& linkText);

} // namespace obcore
