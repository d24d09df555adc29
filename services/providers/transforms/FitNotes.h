// Steps that wait until all pictures are made to fit a mail.
#pragma once

#include <cstdint>
#include <string>

#include "contracts/TransformWork.h"
#include "services/providers/transforms/StageCall.h"

namespace providers {

enum class Noted : std::uint8_t {
    No,      // the step has to be done at once
    Yes,     // FitMail does it
    Stopped, // the run has to stop; the user has read why
};

// Notes a step for the working copy at `path` where all pictures are made to fit later and this is
// one of them: with `kinds` a photo that is to be converted, without a picture that can be made
// smaller. A file about which that can't be found out isn't noted: the step then reports why.
// `folder` as for WorkingCopy::Open.
Noted NoteForFit(StageCall& call, const std::wstring& path, const std::wstring& folder,
                 obcontract::WorkPhotoKinds kinds, bool FitNote::*step);

// Whether the file is a photo of one of these kinds or, without kinds, a picture that can be made
// smaller: Changed. Unchanged for an animation or many pages, NotSupported for another file. Its
// headers alone are read.
WorkResult LookAtPicture(StageCall& call, const WorkingCopy& copy,
                         obcontract::WorkPhotoKinds kinds);

} // namespace providers
