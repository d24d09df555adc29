#include "services/providers/storage/UploadDialog.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/providers/storage/UploadDialogIds.h"

namespace providers {
namespace {

constexpr int kSteps = 1000; // of the bar

// The bar's window class may not be registered in the process yet.
void RegisterBar() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
}

int StepOf(const UploadView& view) {
    const double share = static_cast<double>(view.sent) / static_cast<double>(view.total);
    return static_cast<int>(std::min(share, 1.0) * kSteps);
}

RECT PlaceOf(HWND dialog, int id) {
    RECT place{};
    GetWindowRect(GetDlgItem(dialog, id), &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// How much higher the control has to be for its whole text, in pixels.
int MissingHeight(HWND control) {
    RECT room{};
    GetClientRect(control, &room);
    RECT needed{0, 0, room.right, 0};
    wchar_t text[512]; // callers pass at most 511 characters
    const int length = GetWindowTextW(control, text, static_cast<int>(std::size(text)));
    const HDC dc = GetDC(control);
    const HGDIOBJ old =
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    DrawTextW(dc, text, length, &needed, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return std::max(0L, needed.bottom - room.bottom);
}

// Gives the first text the height that it needs; what is under it moves down.
void FitBody(HWND dialog) {
    const int more = MissingHeight(GetDlgItem(dialog, OB_UPLOAD_BODY));
    if (more == 0) return;
    const RECT body = PlaceOf(dialog, OB_UPLOAD_BODY);
    SetWindowPos(GetDlgItem(dialog, OB_UPLOAD_BODY), nullptr, 0, 0, body.right - body.left,
                 body.bottom - body.top + more, SWP_NOMOVE | SWP_NOZORDER);
    for (const int id : std::array{OB_UPLOAD_FILE, OB_UPLOAD_BAR, OB_UPLOAD_SPEED,
                                   OB_UPLOAD_TIME_LEFT, IDCANCEL}) {
        const RECT place = PlaceOf(dialog, id);
        SetWindowPos(GetDlgItem(dialog, id), nullptr, place.left, place.top + more, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER);
    }
    RECT whole{};
    GetWindowRect(dialog, &whole);
    SetWindowPos(dialog, nullptr, whole.left, whole.top - more / 2, whole.right - whole.left,
                 whole.bottom - whole.top + more, SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

UploadWindow::UploadWindow(const UploadTexts& texts, const std::wstring& fileName, HWND owner) {
    RegisterBar();
    window_ = ObLib::UniqueWindow(CreateDialogParamW(ObLib::ThisModule(),
                                                     MAKEINTRESOURCEW(OB_UPLOAD_DIALOG), owner,
                                                     &Proc, reinterpret_cast<LPARAM>(this)));
    if (!window_) return;
    SetWindowTextW(window_.Get(), texts.title.c_str());
    SetDlgItemTextW(window_.Get(), OB_UPLOAD_BODY, texts.body.c_str());
    SetDlgItemTextW(window_.Get(), OB_UPLOAD_FILE, fileName.c_str());
    FitBody(window_.Get());
    Show({});
    ShowWindow(window_.Get(), SW_SHOW);
}

UploadWindow::~UploadWindow() {
    if (window_) SetWindowLongPtrW(window_.Get(), DWLP_USER, 0);
}

void UploadWindow::ShowText(int id, std::wstring& shown, const std::wstring& text) {
    if (text == shown) return;
    shown = text;
    SetDlgItemTextW(window_.Get(), id, text.c_str());
}

void UploadWindow::ShowBar(const UploadView& view) {
    const HWND bar = GetDlgItem(window_.Get(), OB_UPLOAD_BAR);
    const bool isMarquee = view.total == 0;
    if (isMarquee != isMarquee_) {
        const LONG style = GetWindowLongW(bar, GWL_STYLE);
        SetWindowLongW(bar, GWL_STYLE, isMarquee ? style | PBS_MARQUEE : style & ~PBS_MARQUEE);
        SendMessageW(bar, PBM_SETMARQUEE, isMarquee, 0);
        isMarquee_ = isMarquee;
    }
    const int step = isMarquee ? 0 : StepOf(view);
    if (step == shownStep_) return;
    shownStep_ = step;
    SendMessageW(bar, PBM_SETRANGE32, 0, kSteps);
    SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(step), 0);
}

void UploadWindow::Show(const UploadView& view) {
    if (!window_) return;
    ShowText(OB_UPLOAD_SPEED, shownSpeed_, view.speed);
    ShowText(OB_UPLOAD_TIME_LEFT, shownTime_, view.timeLeft);
    ShowBar(view);
}

void UploadWindow::OnCancel() noexcept {
    isCancelAsked_ = true;
    EnableWindow(GetDlgItem(window_.Get(), IDCANCEL), FALSE);
}

// The system destroys the window with its owner; the handle is then no longer ours.
void UploadWindow::OnDestroyed() noexcept {
    isCancelAsked_ = true;
    static_cast<void>(window_.Release());
}

INT_PTR CALLBACK UploadWindow::Proc(HWND dialog, UINT message, WPARAM wParam,
                                    LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        return TRUE; // the button gets the focus
    }
    auto* const self = reinterpret_cast<UploadWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self) return FALSE;
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) return self->OnCancel(), TRUE;
    if (message == WM_DESTROY) self->OnDestroyed();
    return FALSE;
}

} // namespace providers
