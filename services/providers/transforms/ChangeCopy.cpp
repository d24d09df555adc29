#include "services/providers/transforms/ChangeCopy.h"

#include "services/providers/transforms/PdfPasswords.h"
#include "services/providers/ui/TextIds.h"

namespace providers {
namespace {

UINT TextOf(WorkResult result, const RefusalTexts& texts) {
    switch (result) {
    case WorkResult::Damaged:
        return texts.damaged;
    case WorkResult::TooLarge:
        return texts.tooLarge;
    case WorkResult::CannotFit:
        return texts.cannotFit;
    case WorkResult::Unreadable:
        return OB_TEXT_UNREADABLE;
    case WorkResult::Unwritable:
        return OB_TEXT_UNWRITABLE;
    case WorkResult::NotStarted:
        return OB_TEXT_NO_WORK_PROCESS;
    default:
        return texts.failed;
    }
}

} // namespace

bool RefuseResult(StageCall& call, WorkResult result, const RefusalTexts& texts,
                  const std::wstring& path) {
    if (result == WorkResult::Cancelled) return false;
    const UINT text = TextOf(result, texts);
    return Refuse(call, text != 0 ? text : texts.failed, path);
}

bool ChangeCopy(StageCall& call, const std::wstring& path, const std::wstring& folder,
                const WorkOrder& order, const RefusalTexts& texts, DecideResult* decide) {
    auto copy = OpenCopy(call, path, folder);
    if (!copy) return false;
    const auto changed = NewFile::MakeBeside(*copy, call.run.unfinished);
    if (!changed) return Refuse(call, OB_TEXT_UNWRITABLE, path);
    const WorkReport report = RunOnPdf(call, path, order, copy->Handle(), changed->Handle());
    if (report.result == WorkResult::Unchanged || report.result == WorkResult::NotSupported) {
        return true;
    }
    if (report.result == WorkResult::Changed) {
        return TakePlace(call, *changed, *copy, report) || Refuse(call, OB_TEXT_UNWRITABLE, path);
    }
    const auto decided = decide ? decide(call, report.result, path) : std::nullopt;
    return decided ? *decided : RefuseResult(call, report.result, texts, path);
}

bool PlaceResult(StageCall& call, NewFile& made, WorkingCopy& copy, const ResultKind& kind,
                 std::wstring& path) {
    const auto isEnded = [&] { return call.wait.IsEnded(); };
    const bool done =
        kind.hasName ? made.TakePlaceOf(copy, isEnded)
                     : made.TakeNameBeside(copy, path, kind.extension, kLongestResult, isEnded);
    const UINT text = made.IsNameTooLong() ? OB_TEXT_PATH_TOO_LONG : OB_TEXT_UNWRITABLE;
    return done || Refuse(call, text, path);
}

} // namespace providers
