#include "benchmarks/start/DialogWatch.h"

namespace bench {
namespace {

constexpr wchar_t kDialogClass[] = L"#32770";
constexpr int kFileNameEdit = 1152; // the dialog's file name field
constexpr double kLimit = 30000;    // milliseconds

// A message box, which would be a failure of the run, has no such field.
bool HasFileNameField(HWND dialog) {
    bool found = false;
    EnumChildWindows(
        dialog,
        [](HWND child, LPARAM result) -> BOOL {
            if (GetDlgCtrlID(child) != kFileNameEdit) return TRUE;
            *reinterpret_cast<bool*>(result) = true;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

HWND FindVisibleDialog() {
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, kDialogClass, nullptr)) != nullptr) {
        if (IsWindowVisible(window) && HasFileNameField(window)) return window;
    }
    return nullptr;
}

} // namespace

DialogWatch::DialogWatch() : thread_([this] { Run(); }) {}

DialogWatch::~DialogWatch() {
    if (thread_.joinable()) thread_.join();
}

double DialogWatch::Milliseconds() {
    ended_ = true;
    thread_.join();
    return visibleAfter_;
}

void DialogWatch::Run() {
    HWND dialog = nullptr;
    while (!ended_ && (dialog = FindVisibleDialog()) == nullptr) {
        if (clock_.Milliseconds() > kLimit) return;
        Sleep(1);
    }
    if (!dialog) return;
    visibleAfter_ = clock_.Milliseconds();
    // Posted again until the dialog is gone: a command before the dialog's own loop may be lost.
    while (!ended_ && IsWindow(dialog)) {
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        Sleep(20);
    }
}

} // namespace bench
