// A text is laid over pictures and the pages of PDFs (id 5).
#pragma once

#include <optional>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/settings/WatermarkSettings.h"
#include "services/providers/transforms/ChangeCopy.h"

namespace providers {

// Puts the file with the text of the settings in the place of the working copy at `path`, which
// keeps its name. A file of another kind stays, as do an animation and a picture of many pages. A
// PDF that is signed or needs a password stays if the user, who is asked, wants it to go out
// without a watermark. Where pictures are made to fit afterwards, a picture is only noted. False,
// after a sentence for the user, when the run has to stop. `folder` as for WorkingCopy::Open.
bool AddWatermark(StageCall& call, const std::wstring& path, const std::wstring& folder);

// The watermark of the settings, with its picture open if it has one.
class WatermarkOrder {
public:
    // Nothing, after a sentence, when its picture is missing.
    static std::optional<WatermarkOrder> Load(StageCall& call);

    WorkOrder ForFile() const; // on one file
    WorkOrder ForFit() const;  // on the pictures that are made to fit

private:
    WatermarkOrder() = default;
    WorkOrder Of(obcontract::WorkKind text, obcontract::WorkKind picture) const;

    WatermarkSettings settings_;
    ObLib::UniqueKernelHandle picture_; // empty for a text
};

// The step alone, on a picture: writes the file at `source` with the watermark into the new file,
// which gets no name. `path` is for sentences.
StepResult StampPicture(StageCall& call, const WatermarkOrder& order, HANDLE source, NewFile& made,
                        const std::wstring& path);

// Stops the run with the sentence for a result by which a watermark can't be taken; false.
bool RefuseWatermark(StageCall& call, WorkResult result, const std::wstring& path);

} // namespace providers
