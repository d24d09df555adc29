// The UI driver of the picker: does from another process what a user would do.
#include <windows.h>

#include <exception>
#include <optional>

#include "tools/pickerdriver/CloudVisit.h"
#include "tools/pickerdriver/CommandLine.h"
#include "tools/pickerdriver/MailPage.h"
#include "tools/pickerdriver/Output.h"
#include "tools/pickerdriver/Visit.h"

namespace {

using namespace pickerdriver;

constexpr int kFailed = 2;

int Run(const Task& task) {
    std::optional<MailPage> page;
    if (!task.program.empty()) page.emplace(task.program);
    VisitPicker(task, page ? page->Process() : nullptr);
    if (!page) return 0;
    if (!task.pageResult.empty()) page->LookAtAnswer(task);
    if (task.pickFromCloud) {
        PickFromCloud(task, page->Window(), page->Process());
        page->LookAtAnswer(task);
    }
    if (!task.pageResult.empty()) page->Close();
    return page->AwaitEnd(task.limit);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    // Pictures and coordinates are then in the screen's own pixels, whatever its scale.
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    if (argc == 1) {
        Say(kUsage);
        return kFailed;
    }
    try {
        return Run(ParseCommandLine(argc, argv));
    } catch (const Failure& failure) {
        Say(L"pickerdriver: " + failure.text);
    } catch (const std::exception& failure) {
        Say(L"pickerdriver: " + FromUtf8(failure.what()));
    }
    return kFailed;
}
