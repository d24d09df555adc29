// All pictures of a mail are made smaller together, so that the mail takes its files (id 2).
#pragma once

#include <string>
#include <vector>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Makes the pictures among the files so much smaller, all by one step, that all files together fit
// into a mail of the size in the settings. Nothing changes when they fit as they are. The pictures
// keep their names, and all of them take the places of their copies once all are written. False,
// after a sentence for the user, when the run has to stop: what can't fit is found out before
// anything is written. Records which files are new.
bool FitMail(StageCall& call, const std::vector<std::wstring>& paths);

} // namespace providers
