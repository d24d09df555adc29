// All pictures of a mail are made smaller together, so that the mail takes its files (id 2).
#pragma once

#include <string>
#include <vector>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Makes the pictures among the files so much smaller, all by one step, that all files together fit
// into a mail of the size in the settings. Nothing becomes smaller when they fit as they are. What
// was noted for a picture, a conversion or a watermark, is done with it in the same pass, or alone
// when it needn't become smaller. All pictures take the places of their copies once all are
// written; a converted one has a name of its own, which replaces that of its copy in `paths`.
// False, after a sentence for the user, when the run has to stop: what can't fit is found out
// before anything is put in place. Records which files are new.
bool FitMail(StageCall& call, std::vector<std::wstring>& paths);

} // namespace providers
