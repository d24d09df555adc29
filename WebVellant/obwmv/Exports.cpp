#include "obwmv/Exports.h"

#include <optional>

#include "ObLib/Src/Win32/Guarded.h"
#include "obwmv/BrowserRequest.h"
#include "obwmv/Configuration.h"
#include "obwmv/HostRun.h"
#include "obwmv/OBHook.h"
#include "obwmv/ResultQuery.h"
#include "obwmv/WebHelp.h"

using obcontract::BrowserContext;

namespace {

using ObLib::Guarded;
using obwmv::Progress;

// A browser-side export. `attempt` returns the answer, or nothing when the browser's own dialog is
// to answer. That dialog also answers after an exception, until a dialog has been asked for; from
// then on an exception is a cancel.
template <class Result, class Attempt, class BrowserDialog>
Result AnswerPage(Result cancelled, Attempt attempt, BrowserDialog browserDialog) noexcept {
    Progress progress = Progress::Deciding;
    const auto answer = ObLib::GuardedElse([&] { return attempt(progress); },
                                           [&]() -> std::optional<Result> {
                                               if (progress == Progress::Deciding) return {};
                                               return cancelled;
                                           });
    return answer ? *answer : Guarded(cancelled, browserDialog);
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
    return Guarded<HRESULT>(obwmv::kCancelled,
                            [&] { return obwmv::AnswerGetResult(dialog, out, context); });
}

HRESULT FileOpenDialog_GetResultsInBrowser(IFileDialog* dialog, IShellItemArray** out,
                                           BrowserContext* context) {
    return Guarded<HRESULT>(obwmv::kCancelled,
                            [&] { return obwmv::AnswerGetResults(dialog, out, context); });
}

std::int32_t ShowFileOpenDialogInProcess(HWND owner, std::int32_t id) {
    return Guarded<std::int32_t>(
        -1, [&] { return obwmv::RunHost(owner, static_cast<std::uint32_t>(id)); });
}

bool WebHelpApp(HWND owner) {
    return Guarded<bool>(false, [&] { return obwmv::ShowWebHelp(owner); });
}

bool OBConfig(HWND owner) {
    return Guarded<bool>(false, [&] { return obwmv::Configure(owner); });
}
