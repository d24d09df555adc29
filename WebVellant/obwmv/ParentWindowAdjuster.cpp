#include "obwmv/ParentWindowAdjuster.h"

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/OwnModule.h"

namespace obwmv {
namespace {

using obcore::Check;
using obcore::ObTrace;

constexpr char kSource[] = "obwmv\\ParentWindowAdjuster";
constexpr wchar_t kFakeClass[] = L"obwmv_fake_parent_class";
constexpr wchar_t kFakeWindow[] = L"obwmv_fake_parent_window";
// Not the name above: the class stays registered, and the next run finds it so.
constexpr wchar_t kUnregisteredClass[] = L"obwmv_fake_parent";
constexpr char kMovedTrace[] = "Adjust window %p to position (%d, %d, %d, %d)";

// A handle for a %x of a trace line: its low 32 bits are all that a window handle uses.
unsigned TraceValue(HWND window) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(window));
}

// An ordinary window with an icon: neither a popup of the browser nor a helper window. The icon is
// read as a pointer-sized value, as GetClassLongW may return 0 for it in a 64-bit process.
bool IsBrowserWindow(HWND window) {
    const BOOL visible = IsWindowVisible(window);
    const LONG style = GetWindowLongW(window, GWL_STYLE);
    ObTrace("Find Browser Window: %x %d %08X", TraceValue(window), visible, style);
    return visible && style >= 0 && GetClassLongPtrW(window, GCLP_HICON) != 0;
}

HWND FindBrowserWindowOfClass(const wchar_t* className) {
    HWND window = nullptr;
    do {
        window = FindWindowExW(nullptr, window, className, nullptr);
    } while (window && !IsBrowserWindow(window));
    return window;
}

HWND FindBrowserWindow(const wchar_t* const* classNames, std::int32_t count) {
    for (std::int32_t index = 0; index < count; ++index) {
        if (const HWND found = FindBrowserWindowOfClass(classNames[index])) return found;
    }
    return nullptr;
}

// Of the monitor under the mouse pointer: that is where the user is looking.
RECT WorkAreaUnderPointer() {
    POINT pointer{};
    GetCursorPos(&pointer);
    MONITORINFO monitor{.cbSize = sizeof(MONITORINFO)};
    GetMonitorInfoW(MonitorFromPoint(pointer, MONITOR_DEFAULTTOPRIMARY), &monitor);
    return monitor.rcWork;
}

void MoveHidden(HWND window, const RECT& area) {
    MoveWindow(window, area.left, area.top, area.right - area.left, area.bottom - area.top, FALSE);
    ObTrace(kMovedTrace, window, area.left, area.top, area.right, area.bottom);
}

HWND CreateFakeOwner() {
    WNDCLASSEXW description{.cbSize = sizeof(WNDCLASSEXW)};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = obcore::OwnModule();
    description.lpszClassName = kFakeClass;
    // Registered already after an earlier run; any other failure shows in the creation.
    RegisterClassExW(&description);
    const RECT area = WorkAreaUnderPointer();
    return CreateWindowExW(0, kFakeClass, kFakeWindow, WS_POPUP, area.left, area.top,
                           area.right - area.left, area.bottom - area.top, nullptr, nullptr,
                           obcore::OwnModule(), nullptr);
}

// Only a thread that shares its input with the foreground thread may hand the foreground on.
void TakeForeground(HWND window) {
    const DWORD own = GetCurrentThreadId();
    const DWORD other = GetWindowThreadProcessId(GetForegroundWindow(), nullptr);
    if (own == other) return;
    AttachThreadInput(own, other, TRUE);
    SetForegroundWindow(window);
    AttachThreadInput(own, other, FALSE);
}

void DestroyOwnWindow(HWND window) {
    Check(window != nullptr, "window != NULL", kSource, 131);
    DestroyWindow(window);
}

} // namespace

BrowserWindowFinder::BrowserWindowFinder(HWND* owner, const wchar_t* const* classNames,
                                         std::int32_t count)
    : window_(owner) {
    Check(owner != nullptr, "window != NULL", kSource, 138);
    old_window_ = *owner;
    ObTrace("Find Browser Window Init: %x", TraceValue(old_window_));
    if (const HWND found = FindBrowserWindow(classNames, count)) *window_ = found;
    ObTrace("Find Browser Window Result: %x", TraceValue(*window_));
}

BrowserWindowFinder::~BrowserWindowFinder() { *window_ = old_window_; }

ParentWindowAdjuster::ParentWindowAdjuster(HWND* owner) : window_(owner) {
    Check(owner != nullptr, "window != NULL", kSource, 10);
    old_window_ = *owner;
    if (!old_window_) {
        BeginFake();
    } else if (IsWindowVisible(old_window_)) {
        ObTrace("No need to adjust window %p", old_window_);
    } else {
        BeginMoved();
    }
}

ParentWindowAdjuster::~ParentWindowAdjuster() {
    if (!old_window_) {
        EndFake();
    } else if (new_window_) {
        EndMoved();
    } else {
        Check(*window_ == old_window_, "*window_ == old_window_", kSource, 51);
    }
}

void ParentWindowAdjuster::BeginMoved() {
    new_window_ = old_window_;
    GetWindowRect(new_window_, &saved_);
    MoveHidden(new_window_, WorkAreaUnderPointer());
}

void ParentWindowAdjuster::EndMoved() {
    Check(new_window_ == old_window_, "new_window_ == old_window_", kSource, 55);
    Check(*window_ == new_window_, "*window_ == new_window_", kSource, 56);
    MoveHidden(new_window_, saved_);
}

void ParentWindowAdjuster::BeginFake() {
    const HWND fake = CreateFakeOwner();
    if (!fake) {
        ObTrace("Create fake parent window failed %x", GetLastError());
        return;
    }
    TakeForeground(fake);
    new_window_ = fake;
    *window_ = fake;
    ObTrace("Adjust create fake window %p", fake);
}

void ParentWindowAdjuster::EndFake() {
    Check(*window_ == new_window_, "*window_ == new_window_", kSource, 63);
    Check(new_window_ != nullptr, "new_window_ != NULL", kSource, 64);
    DestroyOwnWindow(new_window_);
    UnregisterClassW(kUnregisteredClass, obcore::OwnModule());
    *window_ = nullptr;
    ObTrace("Delete fake window %p", new_window_);
}

} // namespace obwmv
