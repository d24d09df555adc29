#include "OBCore/picker/Logo.h"

#include <commctrl.h>

#include <cwchar>

#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/Guarded.h"

namespace obcore {
namespace {

constexpr wchar_t kViewClass[] = L"DUIViewWndClassName"; // the shell's
constexpr int kClassCapacity = 64;                       // wide characters with the NUL
constexpr wchar_t kTitle[] = L"#100";                    // the control loads bitmap 100 by it
constexpr int kLeft = 10;                                // pixels
constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | SS_BITMAP;
static_assert(kStyle == 0x5400000E);

// The view's lower edge is the bottom of its client area, whose height comes with WM_SIZE.
void MoveToBottom(HWND logo, int heightOfView) {
    RECT area{};
    GetClientRect(logo, &area);
    MoveWindow(logo, kLeft, heightOfView - area.bottom, area.right, area.bottom, TRUE);
}

LRESULT CALLBACK ViewProcedure(HWND view, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                               DWORD_PTR logo) noexcept {
    if (message == WM_SIZE) MoveToBottom(reinterpret_cast<HWND>(logo), HIWORD(lParam));
    if (message == WM_NCDESTROY) RemoveWindowSubclass(view, &ViewProcedure, id);
    return DefSubclassProc(view, message, wParam, lParam);
}

bool IsView(HWND window) {
    wchar_t name[kClassCapacity] = {};
    GetClassNameW(window, name, kClassCapacity);
    return std::wcscmp(name, kViewClass) == 0;
}

// A further window in the view gets a picture of its own, and the view moves that one from then on.
void OnCreated(HWND window, HWND parent) {
    if (!IsView(parent)) return;
    const HWND logo = CreateWindowExW(0, L"STATIC", kTitle, kStyle, 0, 0, 0, 0, window, nullptr,
                                      OwnModule(), nullptr);
    SetWindowSubclass(parent, &ViewProcedure, 0, reinterpret_cast<DWORD_PTR>(logo));
}

} // namespace

LRESULT CALLBACK LogoHookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept {
    if (code == HCBT_CREATEWND) {
        const auto& created = *reinterpret_cast<const CBT_CREATEWNDW*>(lParam);
        ObLib::RanGuarded(
            [&] { OnCreated(reinterpret_cast<HWND>(wParam), created.lpcs->hwndParent); });
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

} // namespace obcore
