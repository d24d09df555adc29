#include "services/providers/transforms/PersonalData.h"

#include <algorithm>
#include <optional>
#include <set>

#include "services/providers/settings/PersonalDataSettings.h"
#include "services/providers/transforms/PdfPasswords.h"
#include "services/providers/ui/ReceiptDialog.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// Whether the run can go on with this result, with a file that is as it was.
bool IsFinal(WorkResult result) {
    constexpr WorkResult kFinal[] = {WorkResult::Unchanged,  WorkResult::NotSupported,
                                     WorkResult::Damaged,    WorkResult::TooLarge,
                                     WorkResult::Unreadable, WorkResult::ProcessFailed,
                                     WorkResult::Encrypted,  WorkResult::Signed,
                                     WorkResult::Locked,     WorkResult::OtherCipher};
    return std::ranges::find(kFinal, result) != std::end(kFinal);
}

// The findings of two cleans of one file, which another transform changed in between.
std::vector<WorkFound> Both(std::vector<WorkFound> one, const std::vector<WorkFound>& other) {
    for (const WorkFound& found : other) {
        const auto same = std::ranges::find(one, found.key, &WorkFound::key);
        if (same == one.end()) {
            one.push_back(found);
        } else {
            same->count += found.count;
        }
    }
    return one;
}

// A file that an earlier stage has cleaned counts as cleaned, also when there is nothing left to
// remove.
void Record(CleanRecord& record, WorkReport&& report) {
    const bool wasCleaned = record.result == WorkResult::Changed;
    if (wasCleaned && report.result == WorkResult::Unchanged) return;
    if (wasCleaned && report.result == WorkResult::Changed) {
        record.found = Both(std::move(record.found), report.found);
        return;
    }
    record = {report.result, std::move(report.found)};
}

ReceiptFile Row(const std::wstring& path, const CleanRecord& record) {
    return {FileNameOf(path), record.result, record.found};
}

bool IsRest(const CleanRecord& record) {
    return record.result != WorkResult::Changed && record.result != WorkResult::Unchanged;
}

// The record of a file that no earlier stage has seen: what the check found, which in a clean file
// is content that stays.
CleanRecord RecordOf(const WorkReport& checked) {
    const bool isClean = checked.result == WorkResult::Unchanged;
    return {checked.result, isClean ? checked.found : std::vector<WorkFound>()};
}

// Whether the check of a result lets the run go on.
bool Passes(StageCall& call, const std::wstring& path, const WorkReport& checked, bool known) {
    switch (checked.result) {
    case WorkResult::Unchanged:
        return true;
    case WorkResult::Changed:
        return Refuse(call, known ? OB_TEXT_SURVIVED : OB_TEXT_NOT_CLEANED, path);
    case WorkResult::NotStarted:
        return Refuse(call, OB_TEXT_NO_WORK_PROCESS, path);
    case WorkResult::Cancelled:
        return false;
    default:
        return !known || Refuse(call, OB_TEXT_UNCHECKED, path);
    }
}

// Checks one result and adds its row to the receipt.
bool Check(StageCall& call, const std::wstring& path, std::vector<ReceiptFile>& rows) {
    const auto found = call.run.record.cleaned.find(path);
    const bool known = found != call.run.record.cleaned.end();
    if (known && IsRest(found->second)) {
        rows.push_back(Row(path, found->second));
        return true;
    }
    const auto copy = OpenCopy(call, path, {});
    if (!copy) return false;
    const WorkReport checked = RunOnPdf(call, path, CheckCleanOrder(), copy->Handle(), nullptr);
    if (!Passes(call, path, checked, known)) return false;
    rows.push_back(Row(path, known ? found->second : RecordOf(checked)));
    return true;
}

// What the user reads and decides at the end.
bool Report(StageCall& call, const std::vector<ReceiptFile>& rows) {
    const auto settings = PersonalDataSettings::Load(call.settings);
    const auto rest = std::ranges::find_if(rows, &ReceiptFile::IsRest);
    if (rest != rows.end() && !settings.asksAboutRest) {
        ShowSentence(call.wait.Owner(), FormatOwnText(OB_TEXT_REST_NOT_WANTED,
                                                      {rest->name, RestReason(rest->result)}));
        return false;
    }
    if (rest == rows.end() && !settings.showsReceipt) return true;
    return ShowReceipt(call.wait.Owner(), rows, !settings.showsReceipt);
}

} // namespace

bool RemovePersonalData(StageCall& call, const std::wstring& path, const std::wstring& folder) {
    auto copy = OpenCopy(call, path, folder);
    if (!copy) return false;
    const auto cleaned = NewFile::MakeBeside(*copy, call.run.unfinished);
    if (!cleaned) return Refuse(call, OB_TEXT_UNWRITABLE, path);
    WorkReport report = RunOnPdf(call, path, CleanOrder(), copy->Handle(), cleaned->Handle());
    if (report.result == WorkResult::Cancelled) return false;
    if (report.result == WorkResult::NotStarted) {
        return Refuse(call, OB_TEXT_NO_WORK_PROCESS, path);
    }
    if (!IsFinal(report.result) && !TakePlace(call, *cleaned, *copy, report)) {
        return Refuse(call, OB_TEXT_UNWRITABLE, path);
    }
    Record(call.run.record.cleaned[path], std::move(report));
    return true;
}

// A file that couldn't be cleaned adds nothing: the result is cleaned again.
void JoinCleaned(RunRecord& record, const std::wstring& from, const std::wstring& to) {
    const auto part = record.cleaned.find(from);
    if (part == record.cleaned.end()) return;
    CleanRecord joined = std::move(part->second);
    record.cleaned.erase(part);
    if (joined.result != WorkResult::Changed) return;
    CleanRecord& whole = record.cleaned[to];
    whole.found = Both(std::move(whole.found), joined.found);
    whole.result = WorkResult::Changed;
}

bool CheckPersonalData(StageCall& call, const std::vector<std::wstring>& paths) {
    // A file that took the process over while it was cleaned doesn't get to check itself.
    call.run.process.Stop();
    std::vector<ReceiptFile> rows;
    std::set<std::wstring, PathOrder> seen; // a file that is twice in the list has one row
    for (const std::wstring& path : paths) {
        if (!seen.insert(path).second) continue;
        if (!Check(call, path, rows)) return false;
    }
    return !call.wait.IsEnded() && Report(call, rows);
}

} // namespace providers
