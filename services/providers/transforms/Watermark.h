// A text is laid over pictures and the pages of PDFs (id 5).
#pragma once

#include <string>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Puts the file with the text of the settings in the place of the working copy at `path`, which
// keeps its name. A file of another kind stays, as do an animation and a picture of many pages. A
// PDF that is signed or needs a password stays if the user, who is asked, wants it to go out
// without a watermark. False, after a sentence for the user, when the run has to stop. `folder` as
// for WorkingCopy::Open.
bool AddWatermark(StageCall& call, const std::wstring& path, const std::wstring& folder);

} // namespace providers
