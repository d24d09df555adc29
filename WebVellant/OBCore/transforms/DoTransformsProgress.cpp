#include "OBCore/transforms/DoTransformsProgress.h"

#include <utility>

#include "OBCore/transforms/TransformDisplay.h"
#include "OBCore/transforms/TransformSelection.h"
#include "OBCore/transforms/TransformStages.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

// What the providers show on this thread has the language of the product.
void UseInstalledLanguage() {
    OBOptions options;
    options.LoadLanguage();
    SetThreadUILanguage(options.UILanguage);
}

bool IsWell(const TransformRun& run) { return run.Result == kTransformsGoOn; }

// All files are worked on together, in a number of steps that only the manager knows.
void ShowAllFiles(const TransformDisplay& display) {
    display.ReturnToMarquee();
    display.ShowFile({});
}

void RunListStageShown(TransformRun& run, const TransformDisplay& display) {
    ShowAllFiles(display);
    if (!RunListStage(run)) run.Result = kTransformsStop;
}

// The conversion from PDF takes part in the before-list stage only: later stages make PDF files.
// The call that leaves the conversion out comes also after a stage that failed or threw, but not
// after the end of the dialog.
void RunBeforeListStage(TransformRun& run, const TransformDisplay& display) {
    const auto stage = [&] { RunListStageShown(run, display); };
    if (!ObLib::RanGuarded(stage)) run.Result = kTransformsStop;
    if (!run.WhileOpen([&] { LeaveOutConvertFromPdf(run.Manager); })) run.Result = kTransformsStop;
}

void RunStages(TransformRun& run, const TransformDisplay& display,
               const TransformSummary& summary) {
    if (summary.beforeList > 0) RunBeforeListStage(run, display);
    if (IsWell(run) && summary.perFile > 0 && !RunPerFileStage(run, display)) {
        run.Result = kTransformsStop;
    }
    if (IsWell(run) && summary.afterList > 0) RunListStageShown(run, display);
    if (!IsWell(run) || summary.final < 1) return;
    ShowAllFiles(display);
    SendMessageW(run.Dialog, kFinalStageMessage, 0, reinterpret_cast<LPARAM>(&run));
}

void DoTransformsProgress(TransformRun& run) {
    UseInstalledLanguage();
    run.Result = kTransformsGoOn;
    const TransformDisplay display(run.Dialog);
    display.StartMarquee();
    TransformSummary summary;
    if (GetTransformSummary(run, summary)) RunStages(run, display, summary);
}

// What the worker thread owns.
struct Worker {
    std::shared_ptr<TransformRun> run;
    ObLib::UniqueModule module; // of this code
};

// After a cancel the dialog has ended and its handle may be stale: EndDialog fails then, and the
// failure is ignored.
void Work(TransformRun& run) noexcept {
    if (!ObLib::RanGuarded([&run] { DoTransformsProgress(run); })) run.Result = kTransformsStop;
    EndDialog(run.Dialog, static_cast<INT_PTR>(run.Result.load()));
}

// The module is released by a call that doesn't return into it.
DWORD WINAPI WorkerThread(void* parameter) noexcept {
    std::unique_ptr<Worker> worker(static_cast<Worker*>(parameter));
    Work(*worker->run);
    const HMODULE module = worker->module.Release();
    worker.reset();
    FreeLibraryAndExitThread(module, 0);
}

} // namespace

bool StartTransformsWorker(TransformRun& run) {
    auto worker = std::make_unique<Worker>(Worker{run.shared_from_this(), ObLib::KeepThisModule()});
    if (!worker->module) return false;
    const ObLib::UniqueKernelHandle thread(
        CreateThread(nullptr, 0, &WorkerThread, worker.get(), 0, nullptr));
    if (!thread) return false;
    static_cast<void>(worker.release()); // the thread's from here on
    return true;
}

} // namespace obcore
