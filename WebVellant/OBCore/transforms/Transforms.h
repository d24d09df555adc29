// Changing the files themselves before they go out.
#pragma once

#include <string>
#include <vector>

#include "OBCore/options/OBAttachJob.h"

namespace obcore::CompressUtils {

// Runs the transforms that the job's options name on `files`, with `folder` as the run's temporary
// folder. True to go on, false to stop: a transform that is wanted and can't be carried out stops
// the run, it never lets files through as if done.
bool RunTransforms(OBAttachJob& job, std::vector<std::wstring>& files, const std::wstring& folder);

// The case of a single file that isn't zipped: a converted copy in a temporary folder of its own.
// True when the copy is complete, false to stop.
bool TransformSingleFile(OBAttachJob& job, const std::vector<std::wstring>& files);

} // namespace obcore::CompressUtils
