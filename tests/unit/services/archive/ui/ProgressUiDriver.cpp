#include "tests/unit/services/archive/ui/ProgressUiDriver.h"

#include "services/archive/ui/ProgressWindowIds.h"

namespace obtest {
namespace {

constexpr DWORD kLimit = 10000; // milliseconds

BOOL CALLBACK TakeProgress(HWND window, LPARAM found) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    const bool progress = process == GetCurrentProcessId() && IsWindowVisible(window) &&
                          GetDlgItem(window, OB_PROGRESS_BAR);
    if (!progress) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

} // namespace

HWND FindProgressWindow() {
    HWND found = nullptr;
    EnumWindows(&TakeProgress, reinterpret_cast<LPARAM>(&found));
    return found;
}

bool WaitUntil(const std::function<bool()>& condition) {
    const ULONGLONG end = GetTickCount64() + kLimit;
    while (!condition()) {
        if (GetTickCount64() >= end) return false;
        Sleep(5);
    }
    return true;
}

std::wstring ProgressText(HWND window, int id) {
    wchar_t text[1024] = L"";
    GetDlgItemTextW(window, id, text, 1024);
    return text;
}

ProgressUiDriver::ProgressUiDriver(std::function<void(HWND)> act)
    : thread_([this, act = std::move(act)] {
          HWND window = nullptr;
          saw_ = WaitUntil([&] { return (window = FindProgressWindow()) != nullptr; });
          if (saw_) act(window);
      }) {}

void ProgressUiDriver::Join() {
    if (thread_.joinable()) thread_.join();
}

bool ProgressUiDriver::SawWindow() {
    Join();
    return saw_;
}

} // namespace obtest
