// Changing the files themselves before they go out.
#pragma once

#include <string>
#include <vector>

#include "OBCore/options/OBAttachJob.h"

namespace obcore::CompressUtils {

// Runs the transforms that the job's options name, and those that the provider manager has selected
// already, on `files`, with `folder` as the run's temporary folder (empty: there is none). Without
// any selected transform the files stay as they are. Otherwise a progress dialog on
// job.ParentWindow is open while the providers work.
//
// True to go on, also with a list that the providers have emptied; false to stop: a provider failed
// and has shown a message, or the user cancelled. `files` is the list of the last finished step in
// both cases. After a cancel a provider may still be at work on its current call: no other call
// begins, and Deinit of the manager ends that one. On the picker's dialog thread.
bool RunTransforms(OBAttachJob& job, std::vector<std::wstring>& files, const std::wstring& folder);

// The case of a single file that isn't zipped: a converted copy in a temporary folder of its own is
// the job's result. False to stop: no temporary folder, a file that can't be copied, a run that
// stops, or no file left. The folder and what is in it stay then, and the job has no result. A file
// that can't be copied stops before any transform, without a report and without a message.
bool TransformSingleFile(OBAttachJob& job, const std::vector<std::wstring>& files);

} // namespace obcore::CompressUtils
