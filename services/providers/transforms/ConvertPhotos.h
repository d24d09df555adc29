// Photos that not every recipient can open become JPEG or PNG (id 50).
#pragma once

#include <optional>
#include <string>

#include "services/providers/settings/PhotoSettings.h"
#include "services/providers/transforms/ChangeCopy.h"

namespace providers {

// Puts a JPEG or PNG beside the working copy at `path`, deletes the copy and makes `path` that of
// the result: the copy's name with another extension, numbered where there is such a file. A file
// that isn't such a photo stays, as does an animation, a file of many pages and, after one sentence
// a run, a photo that nothing on this machine decodes. Where pictures are made to fit afterwards, a
// photo is only noted. False, after a sentence for the user, when the run has to stop, as for a
// damaged photo. `folder` as for WorkingCopy::Open.
bool ConvertPhoto(StageCall& call, std::wstring& path, const std::wstring& folder);

// The step alone: writes the photo at `source` into the new file, which gets no name. `path` is for
// sentences.
StepResult MakePhoto(StageCall& call, HANDLE source, NewFile& made, const std::wstring& path);

// Whether what the work process made is what was asked for, by what is in the file.
using IsResult = bool(const NewFile& made);

// One order that makes another file of a picture, into the new file, which gets no name. A picture
// that passes, and one that nothing on this machine decodes, goes on as it is.
StepResult MakeOfPicture(StageCall& call, const WorkOrder& order, HANDLE source, NewFile& made,
                         IsResult& isResult, const RefusalTexts& texts, const std::wstring& path);

// Of a converted photo, by what is in the file, for a copy at `path`. Nothing for neither JPEG nor
// PNG.
std::optional<ResultKind> PhotoKindOf(const NewFile& made, const std::wstring& path);

// Puts a converted photo in the place of its copy, or beside it under another name, which `path`
// becomes. False, after a sentence, when that fails or the file is no such photo.
bool PlacePhoto(StageCall& call, NewFile& made, WorkingCopy& copy, std::wstring& path);

// Stops the run with the sentence for a result by which a photo isn't converted; false.
bool RefusePhoto(StageCall& call, WorkResult result, const std::wstring& path);

// What the work process couldn't read passes. Where the reason is that nothing on this machine
// decodes the photo, the user reads one sentence a run. False when the call was to end.
bool PassPhoto(StageCall& call, const WorkReport& report, const std::wstring& path);

} // namespace providers
