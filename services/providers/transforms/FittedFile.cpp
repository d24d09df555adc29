#include "services/providers/transforms/FittedFile.h"

#include <utility>

#include "services/providers/transforms/ChangeCopy.h"
#include "services/providers/transforms/ConvertPhotos.h"
#include "services/providers/transforms/Resize.h"
#include "services/providers/ui/TextIds.h"

namespace providers {
namespace {

// One step, from what the steps before it made.
template <class Step>
StepResult DoStep(StageCall& call, FittedFile& file, Step step) {
    auto made = NewFile::MakeBeside(file.copy, call.run.unfinished);
    if (!made) {
        Refuse(call, OB_TEXT_UNWRITABLE, file.path);
        return StepResult::Stopped;
    }
    const StepResult result = step(file.Unshrunk(), *made);
    if (result == StepResult::Made) file.whole = std::move(made);
    return result;
}

StepResult Convert(StageCall& call, FittedFile& file) {
    return DoStep(call, file, [&](HANDLE source, NewFile& made) {
        return MakePhoto(call, source, made, file.path);
    });
}

StepResult PutStamp(StageCall& call, FittedFile& file, const WatermarkOrder& watermark) {
    return DoStep(call, file, [&](HANDLE source, NewFile& made) {
        return StampPicture(call, watermark, source, made, file.path);
    });
}

// Whether the run goes on.
bool Settle(bool& isNoted, StepResult result) {
    if (result == StepResult::Passed) isNoted = false;
    return result != StepResult::Stopped;
}

} // namespace

bool MakeWhole(StageCall& call, FittedFile& file, const WatermarkOrder* watermark) {
    file.whole.reset();
    FitNote& note = file.note;
    if (note.isConverted && !Settle(note.isConverted, Convert(call, file))) return false;
    if (note.isStamped && watermark && !Settle(note.isStamped, PutStamp(call, file, *watermark))) {
        return false;
    }
    file.Count(file.whole ? file.whole->Size() : file.copySize);
    return true;
}

bool PlaceFitted(StageCall& call, FittedFile& file) {
    NewFile* const made = file.written ? file.smaller.get() : file.whole.get();
    if (!made) return true;
    if (made->Size() == 0 || (file.written && file.written->size != made->Size())) {
        return RefuseFitted(call, WorkResult::ProcessFailed, file);
    }
    if (!file.note.isConverted) {
        return made->TakePlaceOf(file.copy, [&] { return call.wait.IsEnded(); }) ||
               Refuse(call, OB_TEXT_UNWRITABLE, file.path);
    }
    const auto kind = PhotoKindOf(*made, file.path);
    if (!kind) return RefuseFitted(call, WorkResult::ProcessFailed, file);
    return PlaceResult(call, *made, file.copy, *kind, file.path);
}

bool RefuseFitted(StageCall& call, WorkResult result, const FittedFile& file) {
    return file.note.isConverted ? RefusePhoto(call, result, file.path)
                                 : RefuseResize(call, result, file.path);
}

} // namespace providers
