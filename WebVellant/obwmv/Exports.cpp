#include "obwmv/Exports.h"

#include "obwmv/BrowserRequest.h"
#include "obwmv/OBHook.h"

using obcontract::BrowserContext;

namespace {

using obwmv::Progress;

// The edge of a browser-side export. `attempt` answers, or leaves it to `browserDialog`; so does an
// exception until a dialog has been asked for, after which the page reads a cancel.
template <class Result, class Attempt, class BrowserDialog>
Result AnswerPage(Result cancelled, Attempt attempt, BrowserDialog browserDialog) noexcept {
    Progress progress = Progress::Deciding;
    try {
        if (const auto answer = attempt(progress)) return *answer;
    } catch (...) {
        if (progress == Progress::Answering) return cancelled;
    }
    try {
        return browserDialog();
    } catch (...) {
        return cancelled;
    }
}

// The edge of the other exports.
template <class Result, class Call>
Result AnswerOr(Result failure, Call call) noexcept {
    try {
        return call();
    } catch (...) {
        return failure;
    }
}

} // namespace

BOOL GetOpenFileNameInBrowser(OPENFILENAMEW* request, BrowserContext* context) {
    return AnswerPage<BOOL>(
        FALSE,
        [&](Progress& progress) { return obwmv::AnswerOpenFileName(request, context, progress); },
        [&] { return context->CallGetOpenFileName(request); });
}

HRESULT FileOpenDialog_ShowInBrowser(IFileDialog* dialog, HWND owner, BrowserContext* context) {
    return AnswerPage<HRESULT>(
        obwmv::kCancelled,
        [&](Progress& progress) { return obwmv::AnswerShow(dialog, owner, context, progress); },
        [&] { return context->CallShow(dialog, owner); });
}

HRESULT FileOpenDialog_GetResultInBrowser(IFileDialog* dialog, IShellItem** out,
                                          BrowserContext* context) {
    return AnswerOr<HRESULT>(obwmv::kCancelled,
                             [&] { return obwmv::AnswerGetResult(dialog, out, context); });
}

HRESULT FileOpenDialog_GetResultsInBrowser(IFileDialog* dialog, IShellItemArray** out,
                                           BrowserContext* context) {
    return AnswerOr<HRESULT>(obwmv::kCancelled,
                             [&] { return obwmv::AnswerGetResults(dialog, out, context); });
}

std::int32_t ShowFileOpenDialogInProcess(HWND owner, std::int32_t id) {
    return AnswerOr<std::int32_t>(
        -1, [&] { return obwmv::AnswerInHost(owner, static_cast<std::uint32_t>(id)); });
}

bool WebHelpApp(HWND owner) {
    return AnswerOr<bool>(false, [&] { return obwmv::AnswerWebHelp(owner); });
}
