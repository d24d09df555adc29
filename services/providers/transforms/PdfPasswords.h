// Requests about files that may be encrypted PDFs: the user is asked for the password.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Whether a password, or another one, might help.
bool NeedsPassword(WorkResult result) noexcept;

// Runs the request for the file at `path` by calling `run` with it: first as it is, and while the
// PDF needs a password with those that the user typed for other files of the run, then with what
// the user types. A file is asked about once a run, however many requests there are. The last
// report; Encrypted or Locked when the user leaves the file as it is, Cancelled when the user ends
// the run.
WorkReport RunWithPassword(StageCall& call, const std::wstring& path, const WorkOrder& order,
                           const std::function<WorkReport(const WorkOrder& order)>& run);

// The same with the run's own process. `target` null: the request writes no file.
WorkReport RunOnPdf(StageCall& call, const std::wstring& path, const WorkOrder& order,
                    HANDLE source, HANDLE target);

} // namespace providers
