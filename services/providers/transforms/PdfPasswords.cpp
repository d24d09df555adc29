#include "services/providers/transforms/PdfPasswords.h"

#include <optional>

#include "services/providers/ui/PdfPasswordDialog.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// Results by which a password is known to open the file. With any other one the file may not have
// been read at all.
bool HasOpened(WorkResult result) {
    return result == WorkResult::Changed || result == WorkResult::Unchanged ||
           result == WorkResult::Signed || result == WorkResult::NotSupported;
}

class PasswordedRequest {
public:
    PasswordedRequest(StageCall& call, const std::wstring& path, const WorkOrder& order,
                      const std::function<WorkReport(const WorkOrder&)>& run)
        : call_(call), passwords_(call.run.passwords), path_(path), order_(order), run_(run) {}

    WorkReport Run() {
        WorkReport report = TryKnown();
        if (!NeedsPassword(report.result) || passwords_.left.contains(path_)) return report;
        if (auto opened = TryGiven()) return std::move(*opened);
        return AskUntilItOpens(std::move(report));
    }

private:
    WorkReport With(const ObLib::Secret& password) { return run_(order_.With(password)); }

    // With the password that has opened the file before, if there is one.
    WorkReport TryKnown() {
        const auto known = passwords_.known.find(path_);
        return known == passwords_.known.end() ? run_(order_)
                                               : With(passwords_.given[known->second]);
    }

    // With the passwords of the run's other files.
    std::optional<WorkReport> TryGiven() {
        for (std::size_t number = 0; number < passwords_.given.size(); ++number) {
            WorkReport report = With(passwords_.given[number]);
            if (NeedsPassword(report.result)) continue;
            if (HasOpened(report.result)) passwords_.known[path_] = number;
            return report;
        }
        return {};
    }

    WorkReport AskUntilItOpens(WorkReport report) {
        UINT text = TextFor(report.result, OB_TEXT_PDF_PASSWORD);
        while (NeedsPassword(report.result)) {
            ObLib::Secret password;
            const PasswordAnswer answer = Ask(text, password);
            if (answer == PasswordAnswer::LeaveAsItIs) {
                passwords_.left.insert(path_);
                return report;
            }
            if (answer == PasswordAnswer::Cancelled) return Cancelled();
            report = With(password);
            if (HasOpened(report.result)) Keep(std::move(password));
            text = TextFor(report.result, OB_TEXT_PDF_PASSWORD_WRONG);
        }
        return report;
    }

    static UINT TextFor(WorkResult result, UINT encrypted) {
        return result == WorkResult::Locked ? OB_TEXT_PDF_PASSWORD_LOCKED : encrypted;
    }

    PasswordAnswer Ask(UINT text, ObLib::Secret& password) {
        if (call_.wait.IsEnded()) return PasswordAnswer::Cancelled;
        return AskForPdfPassword(call_.wait.Owner(), FormatOwnText(text, {FileNameOf(path_)}),
                                 password);
    }

    void Keep(ObLib::Secret password) {
        passwords_.given.push_back(std::move(password));
        passwords_.known[path_] = passwords_.given.size() - 1;
    }

    static WorkReport Cancelled() {
        WorkReport report;
        report.result = WorkResult::Cancelled;
        return report;
    }

    StageCall& call_;
    RunPasswords& passwords_;
    const std::wstring& path_;
    const WorkOrder& order_;
    const std::function<WorkReport(const WorkOrder&)>& run_;
};

} // namespace

bool NeedsPassword(WorkResult result) noexcept {
    return result == WorkResult::Encrypted || result == WorkResult::Locked;
}

WorkReport RunWithPassword(StageCall& call, const std::wstring& path, const WorkOrder& order,
                           const std::function<WorkReport(const WorkOrder& order)>& run) {
    return PasswordedRequest(call, path, order, run).Run();
}

WorkReport RunOnPdf(StageCall& call, const std::wstring& path, const WorkOrder& order,
                    HANDLE source, HANDLE target) {
    return RunWithPassword(call, path, order, [&](const WorkOrder& tried) {
        return call.run.process.Run(tried, source, target, call.wait);
    });
}

} // namespace providers
