#include "obwmv/OBHook.h"

#include <string>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "obwmv/BrowserRequest.h"
#include "obwmv/Library.h"
#include "obwmv/ParentWindowAdjuster.h"
#include "obwmv/SiteRules.h"

using obcontract::BrowserContext;

namespace obwmv {
namespace {

constexpr char kSource[] = "obwmv\\OBHook";

// The hook's veto is asked last, and only when the site rules let the picker through.
bool IsPickerFor(BrowserContext& context) {
    const std::wstring url = context.GetPageUrl();
    return !UsesBrowserDialog(url.c_str()) && context.IsPickerWanted() != 0;
}

// Calls `run` with the settled owner, which is also in `ownerField` until `run` returns. At the end
// the field has its old value, also when an exception passes.
template <class Run>
auto RunWithSettledOwner(HWND* ownerField, BrowserContext& context, Progress& progress, Run run) {
    const std::int32_t classCount = context.GetBrowserWindowClassCount();
    const wchar_t* const* classNames = context.GetBrowserWindowClasses();
    const BrowserWindowFinder finder(ownerField, classNames, classCount);
    const ParentWindowAdjuster adjuster(ownerField);
    progress = Progress::Answering;
    return run(*ownerField);
}

} // namespace

std::optional<BOOL> AnswerOpenFileName(OPENFILENAMEW* request, BrowserContext* context,
                                       Progress& progress) {
    if (!obcore::BindResourceModule()) return std::nullopt;
    const ActivationScope activation;
    if (!activation) return std::nullopt;
    obcore::Check(request != nullptr, "open_file_name != NULL", kSource, 326);
    obcore::Check(context != nullptr, "browser_context != NULL", kSource, 327);
    if (!IsPickerFor(*context)) {
        progress = Progress::Answering;
        return context->CallGetOpenFileName(request);
    }
    // The request carries the owner, so that the argument isn't needed.
    return RunWithSettledOwner(&request->hwndOwner, *context, progress,
                               [&](HWND) { return RunOpenFileNameRequest(request, context); });
}

std::optional<HRESULT> AnswerShow(IFileDialog* dialog, HWND owner, BrowserContext* context,
                                  Progress& progress) {
    if (!obcore::BindResourceModule()) return std::nullopt;
    const ActivationScope activation;
    if (!activation) return std::nullopt;
    if (!IsPickerFor(*context)) {
        progress = Progress::Answering;
        return context->CallShow(dialog, owner);
    }
    return RunWithSettledOwner(&owner, *context, progress, [&](HWND settledOwner) {
        return RunDialogRequest(dialog, settledOwner, context);
    });
}

} // namespace obwmv
