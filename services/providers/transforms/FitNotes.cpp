#include "services/providers/transforms/FitNotes.h"

namespace providers {
namespace {

using namespace obcontract;

// The settings alone aren't enough: they stay when pictures aren't made smaller in this run.
bool FitFollows(const StageCall& call) {
    return call.selected.Contains(TransformId::ResizeImages) && call.plan.resize.FitsMail();
}

} // namespace

Noted NoteForFit(StageCall& call, const std::wstring& path, const std::wstring& folder,
                 WorkPhotoKinds kinds, bool FitNote::*step) {
    if (!FitFollows(call)) return Noted::No;
    auto& noted = call.run.record.noted;
    if (!noted.contains(path)) {
        const auto copy = OpenCopy(call, path, folder);
        if (!copy) return Noted::Stopped;
        if (LookAtPicture(call, *copy, kinds) != WorkResult::Changed) return Noted::No;
    }
    noted[path].*step = true;
    return Noted::Yes;
}

WorkResult LookAtPicture(StageCall& call, const WorkingCopy& copy, WorkPhotoKinds kinds) {
    const WorkOrder order(WorkKind::FitCheck, WorkFitCheck{kinds, 0});
    return call.run.process.Run(order, copy.Handle(), nullptr, call.wait).result;
}

} // namespace providers
