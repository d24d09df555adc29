#include "tests/support/ProgressUiDriver.h"

#include "services/archive/ui/ProgressWindowIds.h"

namespace obtest {
namespace {

constexpr DWORD kDriverLimit = 10000; // milliseconds

bool IsProgressWindow(HWND window) { return GetDlgItem(window, OB_PROGRESS_BAR) != nullptr; }

} // namespace

HWND FindProgressWindow(DWORD processId) { return FindTopWindow(&IsProgressWindow, processId); }

bool CancelProgressWindow(DWORD limit) {
    const HWND window = WaitForTopWindow(&IsProgressWindow, 0, limit);
    if (!window) return false;
    Click(GetDlgItem(window, IDCANCEL));
    return WaitUntil([window] { return !IsWindow(window); }, limit);
}

ProgressUiDriver::ProgressUiDriver(std::function<void(HWND)> act)
    : WindowDriver([] { return FindProgressWindow(); }, std::move(act), kLeaveOpen, kDriverLimit) {}

} // namespace obtest
