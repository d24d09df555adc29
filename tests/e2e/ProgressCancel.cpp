#include "tests/e2e/ProgressCancel.h"

#include "services/archive/ui/ProgressWindowIds.h"
#include "tests/support/PickerUiDriver.h"

namespace obtest {
namespace {

BOOL CALLBACK TakeProgressWindow(HWND window, LPARAM found) {
    if (!IsWindowVisible(window) || !GetDlgItem(window, OB_PROGRESS_BAR)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

HWND FindProgressWindow() {
    HWND found = nullptr;
    EnumWindows(&TakeProgressWindow, reinterpret_cast<LPARAM>(&found));
    return found;
}

} // namespace

bool CancelProgressWindow(DWORD limit) {
    HWND window = nullptr;
    if (!OpenPicker::WaitFor([&] { return (window = FindProgressWindow()) != nullptr; }, limit)) {
        return false;
    }
    PostMessageW(GetDlgItem(window, IDCANCEL), BM_CLICK, 0, 0);
    return OpenPicker::WaitFor([&] { return !IsWindow(window); }, limit);
}

} // namespace obtest
