#include "services/providers/transforms/StageCall.h"

#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

UINT TextOf(CopyRefusal refusal) {
    return refusal == CopyRefusal::NotACopy ? OB_TEXT_NOT_A_COPY : OB_TEXT_UNREADABLE;
}

} // namespace

bool Refuse(StageCall& call, UINT text, const std::wstring& path) {
    if (call.wait.IsEnded()) return false;
    ShowSentence(call.wait.Owner(), FormatOwnText(text, {FileNameOf(path)}));
    return false;
}

bool Ask(StageCall& call, UINT text, const std::wstring& path) {
    return !call.wait.IsEnded() &&
           AskQuestion(call.wait.Owner(), FormatOwnText(text, {FileNameOf(path)}));
}

std::optional<WorkingCopy> OpenCopy(StageCall& call, const std::wstring& path,
                                    const std::wstring& folder) {
    CopyRefusal refusal{};
    auto copy = WorkingCopy::Open(path, folder, refusal);
    if (!copy) Refuse(call, TextOf(refusal), path);
    return copy;
}

// The work process may have reported anything: what counts is what is on the disk.
bool TakePlace(StageCall& call, NewFile& made, WorkingCopy& copy, const WorkReport& report) {
    if (report.size == 0 || made.Size() != report.size) return false;
    return made.TakePlaceOf(copy, [&] { return call.wait.IsEnded(); });
}

} // namespace providers
