// Pictures are made smaller, each by an aim of its own (id 2).
#pragma once

#include <string>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Puts a smaller picture in the place of the working copy at `path`, which keeps its name. A file
// that isn't a picture of a kind that is worked on stays, as does a picture that meets the aim
// already, an animation and a file of many pages. False, after a sentence for the user, when the
// run has to stop, as for a damaged picture. `folder` as for WorkingCopy::Open.
bool ResizePicture(StageCall& call, const std::wstring& path, const std::wstring& folder);

// Stops the run with the sentence for a result by which a picture doesn't become smaller; false.
bool RefuseResize(StageCall& call, WorkResult result, const std::wstring& path);

} // namespace providers
