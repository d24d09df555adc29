#include "services/archive/ui/ProgressWindow.h"

#include <commctrl.h>

#include <algorithm>

#include "ObLib/Src/Win32/LongPath.h"
#include "services/archive/ThisModule.h"
#include "services/archive/ui/ProgressWindowIds.h"

namespace obarchive {
namespace {

constexpr int kSteps = 1000; // of the bar

// The bar's window class may not be registered in the process yet.
void RegisterBar() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
}

int StepOf(const ProgressView& view) {
    const double share = static_cast<double>(view.bytesRead) / static_cast<double>(view.totalBytes);
    return static_cast<int>(std::min(share, 1.0) * kSteps);
}

} // namespace

ProgressWindow::ProgressWindow(HWND owner) {
    RegisterBar();
    const HWND living = IsWindow(owner) ? owner : nullptr;
    window_ =
        ObLib::UniqueWindow(CreateDialogParamW(ThisModule(), MAKEINTRESOURCEW(OB_PROGRESS_WINDOW),
                                               living, &Proc, reinterpret_cast<LPARAM>(this)));
    if (!window_) return;
    // EnableWindow returns whether the owner was disabled before; then it stays so at the end.
    if (living && !EnableWindow(living, FALSE)) disabledOwner_ = living;
    ShowWindow(window_.Get(), SW_SHOW);
}

ProgressWindow::~ProgressWindow() {
    // Enabled before the window is destroyed, or the system would activate another window.
    if (disabledOwner_) EnableWindow(disabledOwner_, TRUE);
    if (window_) SetWindowLongPtrW(window_.Get(), DWLP_USER, 0);
}

void ProgressWindow::ShowText(int id, std::wstring& shown, const std::wstring& text) {
    if (text == shown) return;
    shown = text;
    SetDlgItemTextW(window_.Get(), id, text.c_str());
}

void ProgressWindow::ShowBar(const ProgressView& view) {
    const HWND bar = GetDlgItem(window_.Get(), OB_PROGRESS_BAR);
    const bool marquee = view.totalBytes == 0;
    if (marquee != marquee_) {
        const LONG style = GetWindowLongW(bar, GWL_STYLE);
        SetWindowLongW(bar, GWL_STYLE, marquee ? style | PBS_MARQUEE : style & ~PBS_MARQUEE);
        SendMessageW(bar, PBM_SETMARQUEE, marquee, 0);
        marquee_ = marquee;
    }
    const int step = marquee ? 0 : std::max(StepOf(view), shownStep_);
    if (step == shownStep_) return;
    shownStep_ = step;
    SendMessageW(bar, PBM_SETRANGE32, 0, kSteps);
    SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(step), 0);
}

void ProgressWindow::Show(const ProgressView& view) {
    if (!window_) return;
    ShowText(OB_PROGRESS_FILE, shownFile_, ObLib::WithoutLongPathPrefix(view.file));
    ShowText(OB_PROGRESS_TIME_LEFT, shownTime_, view.timeLeft);
    ShowBar(view);
}

void ProgressWindow::OnCancel() {
    cancelAsked_ = true;
    EnableWindow(GetDlgItem(window_.Get(), IDCANCEL), FALSE);
}

// The system destroys the window with its owner; the handle is then no longer ours.
void ProgressWindow::OnDestroyed() {
    cancelAsked_ = true;
    disabledOwner_ = nullptr;
    static_cast<void>(window_.Release());
}

INT_PTR CALLBACK ProgressWindow::Proc(HWND dialog, UINT message, WPARAM wParam,
                                      LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        return TRUE; // the button gets the focus
    }
    auto* const self = reinterpret_cast<ProgressWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self) return FALSE;
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) return self->OnCancel(), TRUE;
    if (message == WM_DESTROY) self->OnDestroyed();
    return FALSE;
}

} // namespace obarchive
