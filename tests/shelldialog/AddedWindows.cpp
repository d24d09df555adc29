#include "tests/shelldialog/AddedWindows.h"

#include <commctrl.h>

namespace shelldialog {
namespace {

constexpr WORD kDialogAtom = 32770; // the system's class of dialogs

// The hook that waits for this thread's next dialog; null when none does.
thread_local ObLib::UniqueWindowHook* waiting = nullptr;

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ThisModule), &module);
    return module;
}

void FillWithItsChild(HWND view) {
    RECT area{};
    GetClientRect(view, &area);
    MoveWindow(GetWindow(view, GW_CHILD), 0, 0, area.right, area.bottom, TRUE);
}

LRESULT CALLBACK ViewProcedure(HWND view, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE) FillWithItsChild(view);
    return DefWindowProcW(view, message, wParam, lParam);
}

void RegisterClasses() {
    WNDCLASSEXW entry{.cbSize = sizeof(entry),
                      .lpfnWndProc = &ViewProcedure,
                      .hInstance = ThisModule(),
                      .hCursor = LoadCursorW(nullptr, IDC_ARROW),
                      .hbrBackground = reinterpret_cast<HBRUSH>(COLOR_3DFACE + 1),
                      .lpszClassName = kViewClass};
    RegisterClassExW(&entry);
    entry.lpfnWndProc = &DefWindowProcW;
    entry.lpszClassName = kViewChildClass;
    RegisterClassExW(&entry);
}

// The box has the place of Wine's own field and isn't visible, so that the user sees one field.
// Right before the file types in the order of windows, as on Windows.
void AddBox(HWND dialog, HWND fileTypes) {
    const HWND box =
        CreateWindowExW(0, kBoxClass, nullptr, WS_CHILD | WS_CLIPSIBLINGS | CBS_DROPDOWN, 0, 0, 0,
                        0, dialog, reinterpret_cast<HMENU>(kBoxId), ThisModule(), nullptr);
    const HWND before = GetWindow(fileTypes, GW_HWNDPREV);
    SetWindowPos(box, before ? before : HWND_TOP, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// Without an area until it is placed, so that its child exists when it gets its size.
void AddView(HWND dialog) {
    constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
    const HWND view = CreateWindowExW(0, kViewClass, nullptr, kStyle, 0, 0, 0, 0, dialog, nullptr,
                                      ThisModule(), nullptr);
    CreateWindowExW(0, kViewChildClass, nullptr, kStyle, 0, 0, 0, 0, view, nullptr, ThisModule(),
                    nullptr);
}

// The view has the dialog's whole area and is below all other controls, as on Windows.
void Place(HWND dialog) {
    const HWND box = GetDlgItem(dialog, kBoxId);
    if (!box) return;
    RECT field{};
    GetWindowRect(GetDlgItem(dialog, kNameFieldId), &field);
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&field), 2);
    SetWindowPos(box, nullptr, field.left, field.top, field.right - field.left,
                 field.bottom - field.top, SWP_NOZORDER | SWP_NOACTIVATE);
    RECT area{};
    GetClientRect(dialog, &area);
    SetWindowPos(FindWindowExW(dialog, nullptr, kViewClass, nullptr), HWND_BOTTOM, 0, 0, area.right,
                 area.bottom, SWP_NOACTIVATE);
}

void AddTo(HWND dialog) {
    const HWND fileTypes = GetDlgItem(dialog, kFileTypesId);
    if (!fileTypes || !GetDlgItem(dialog, kNameFieldId)) return;
    RegisterClasses();
    AddBox(dialog, fileTypes);
    AddView(dialog);
    Place(dialog);
}

LRESULT CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam,
                                 UINT_PTR id, DWORD_PTR) {
    if (message == WM_NCDESTROY) RemoveWindowSubclass(dialog, &DialogProcedure, id);
    const LRESULT result = DefSubclassProc(dialog, message, wParam, lParam);
    if (message == WM_INITDIALOG) AddTo(dialog);
    if (message == WM_SIZE) Place(dialog);
    return result;
}

LRESULT CALLBACK OnHook(int code, WPARAM wParam, LPARAM lParam) {
    const HWND window = reinterpret_cast<HWND>(wParam);
    if (code == HCBT_CREATEWND && waiting &&
        LOWORD(GetClassLongPtrW(window, GCW_ATOM)) == kDialogAtom) {
        SetWindowSubclass(window, &DialogProcedure, 0, 0);
        waiting->Reset();
        waiting = nullptr;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

} // namespace

AddedWindows::AddedWindows()
    : outer_(waiting), hook_(SetWindowsHookExW(WH_CBT, &OnHook, nullptr, GetCurrentThreadId())) {
    waiting = &hook_;
}

AddedWindows::~AddedWindows() { waiting = outer_; }

} // namespace shelldialog
