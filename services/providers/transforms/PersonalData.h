// Personal data is removed (id 51).
#pragma once

#include <string>
#include <vector>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Cleans the working copy at `path`, which keeps its name, and records what was removed. A file
// that can't be cleaned is recorded as such and stays: the final stage asks about it. False, after
// a sentence for the user, when the run has to stop. `folder` as for WorkingCopy::Open.
bool RemovePersonalData(StageCall& call, const std::wstring& path, const std::wstring& folder);

// What was removed from the file at `from` counts for the one at `to`, of which it became a part.
void JoinCleaned(RunRecord& record, const std::wstring& from, const std::wstring& to);

// Opens every result again. False, after a sentence, when a file still contains personal data or
// can't be checked; false also when the user stops the run, who sees the receipt if the settings
// say so and is asked about files that can't be cleaned.
bool CheckPersonalData(StageCall& call, const std::vector<std::wstring>& paths);

} // namespace providers
