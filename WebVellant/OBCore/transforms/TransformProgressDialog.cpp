#include "OBCore/transforms/TransformProgressDialog.h"

#include <commctrl.h>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/transforms/DoTransformsProgress.h"
#include "OBCore/transforms/TransformStages.h"
#include "ObLib/Src/Win32/Guarded.h"

namespace obcore {
namespace {

TransformRun* RunOf(HWND dialog) {
    return reinterpret_cast<TransformRun*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

// Without a worker the dialog stays open until the user cancels.
void Open(HWND dialog, TransformRun& run) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&run));
    run.Dialog = dialog;
    if (ObLib::Guarded(false, [&run] { return StartTransformsWorker(run); })) return;
    ObTrace("Create thread DoTransformsProgress failed");
}

void Cancel(HWND dialog) {
    if (TransformRun* const run = RunOf(dialog)) run->Cancel();
    EndDialog(dialog, kTransformsStop);
}

// A command's parameter is a control or null in place of a run: there is nothing to do for it then,
// as for any run that isn't this dialog's.
void RunFinalStageOf(HWND dialog, LPARAM parameter) {
    TransformRun* const run = RunOf(dialog);
    if (!run || parameter != reinterpret_cast<LPARAM>(run)) return;
    if (!ObLib::Guarded(false, [run] { return RunFinalStage(*run); })) {
        run->Result = kTransformsStop;
    }
}

// A command goes on into the final stage in every case. After a cancel that stage finds the dialog
// ended and calls nothing.
INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    switch (message) {
    case WM_INITDIALOG:
        Open(dialog, *reinterpret_cast<TransformRun*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDCANCEL) Cancel(dialog);
        [[fallthrough]];
    case kFinalStageMessage:
        RunFinalStageOf(dialog, lParam);
        return TRUE;
    default:
        return FALSE;
    }
}

// The class of the bar may not be registered in the process yet.
void RegisterBar() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
}

} // namespace

bool ShowTransformProgress(TransformRun& run) {
    RegisterBar();
    const INT_PTR result =
        DialogBoxParamW(ResourceModule(), MAKEINTRESOURCEW(OB_TRANSFORM_PROGRESS), run.Dialog,
                        &Procedure, reinterpret_cast<LPARAM>(&run));
    // The worker may have ended the dialog again after the user's cancel, which counts.
    const bool cancelled = run.MarkEnd();
    return result == kTransformsGoOn && !cancelled;
}

} // namespace obcore
