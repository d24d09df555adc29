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
    if (result == StepResult::Made) file.stepped = std::move(made);
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

// Whether the run goes on after the step, which is noted no longer if it passed the file.
bool GoesOn(bool& isNoted, StepResult result) {
    if (result == StepResult::Passed) isNoted = false;
    return result != StepResult::Stopped;
}

} // namespace

bool DoSteps(StageCall& call, FittedFile& file, const WatermarkOrder* watermark) {
    file.stepped.reset();
    FitNote& note = file.note;
    if (note.isConverted && !GoesOn(note.isConverted, Convert(call, file))) return false;
    if (note.isStamped && watermark && !GoesOn(note.isStamped, PutStamp(call, file, *watermark))) {
        return false;
    }
    file.Count(file.stepped ? file.stepped->Size() : file.copySize);
    return true;
}

bool IsWhole(const NewFile& made, const WorkReport& report, const FittedFile& file) {
    return report.size != 0 && report.size == made.Size() &&
           (!file.note.isConverted || PhotoKindOf(made, file.path));
}

bool PlaceFitted(StageCall& call, FittedFile& file) {
    NewFile* const made = file.written ? file.smaller.get() : file.stepped.get();
    if (!made) return true;
    if (file.note.isConverted) return PlacePhoto(call, *made, file.copy, file.path);
    return made->TakePlaceOf(file.copy, [&] { return call.wait.IsEnded(); }) ||
           Refuse(call, OB_TEXT_UNWRITABLE, file.path);
}

bool RefuseFitted(StageCall& call, WorkResult result, const FittedFile& file) {
    return file.note.isConverted ? RefusePhoto(call, result, file.path)
                                 : RefuseResize(call, result, file.path);
}

} // namespace providers
