// Pictures and office documents become PDFs (id 3).
#pragma once

#include <string>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Puts a PDF beside the working copy at `path`, deletes the copy and makes `path` that of the
// result: the copy's name with "pdf" as its extension, numbered where there is such a file. A file
// of another kind stays, as do an animation and, after a sentence, a photo that nothing on this
// machine decodes, a document when no office program is there (both once a run) and one that needs
// a password. False, after a sentence for the user, when the run has to stop, as for a damaged
// picture. `folder` as for WorkingCopy::Open.
bool ConvertToPdf(StageCall& call, std::wstring& path, const std::wstring& folder);

// Informs the user, once a run, that documents stay as they are when they are wanted as PDFs and
// no office program is there. In front of `owner`, on its thread.
void NoteMissingSuite(TransformRun& run, const TransformSettings& settings, HWND owner);

} // namespace providers
