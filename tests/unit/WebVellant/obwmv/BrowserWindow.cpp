#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"

namespace obtest {
namespace {

constexpr wchar_t kClass[] = L"TestBrowser";
constexpr UINT_PTR kTimer = 1;

} // namespace

BrowserWindow::BrowserWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = &Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kClass;
    RegisterClassW(&windowClass);
    const RECT& place = kBrowserPlace;
    root_.Reset(CreateWindowExW(0, kClass, L"Mail", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place.left,
                                place.top, place.right - place.left, place.bottom - place.top,
                                nullptr, nullptr, windowClass.hInstance, nullptr));
    SetWindowLongPtrW(Root(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    page_.Reset(CreateWindowExW(0, L"Static", L"Page", WS_CHILD | WS_VISIBLE, 10, 10, 100, 80,
                                Root(), nullptr, windowClass.hInstance, nullptr));
}

void BrowserWindow::OnTick(std::function<void()> tick) {
    tick_ = std::move(tick);
    SetTimer(Root(), kTimer, 10, nullptr);
}

LRESULT CALLBACK BrowserWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* self = reinterpret_cast<BrowserWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_TIMER && self && self->tick_) self->tick_();
    return DefWindowProcW(window, message, first, second);
}

int QuitValueInQueue() {
    MSG message = {};
    if (!PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) return -1;
    return static_cast<int>(message.wParam);
}

} // namespace obtest
