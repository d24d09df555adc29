#include "ObLibX/src/dialog/Tooltips.h"

#include <commctrl.h>

#include "ObLibX/src/dialog/FlatDressing.h"

namespace ObLibX {
namespace {

constexpr int kDelay = 500;  // milliseconds
constexpr int kWidest = 300; // pixels, at every scale

// The mouse passes through a static text that doesn't notify, and its tooltip would never be shown.
void LetTheMouseSee(HWND tool) {
    if (!IsOfClass(tool, L"static")) return;
    SetWindowLongPtrW(tool, GWL_STYLE, GetWindowLongPtrW(tool, GWL_STYLE) | SS_NOTIFY);
}

} // namespace

HWND MakeTooltipWindow(HWND dialog) {
    const HWND tooltips =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                        TTS_ALWAYSTIP | TTS_NOPREFIX | WS_POPUP, CW_USEDEFAULT, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, nullptr, nullptr);
    if (tooltips == nullptr) return nullptr;
    SendMessageW(tooltips, TTM_SETDELAYTIME, TTDT_AUTOMATIC, kDelay);
    SendMessageW(tooltips, TTM_ACTIVATE, TRUE, 0);
    SendMessageW(tooltips, TTM_SETMAXTIPWIDTH, 0, kWidest);
    return tooltips;
}

bool AddTool(HWND tooltips, HWND tool, const wchar_t* text) {
    LetTheMouseSee(tool);
    TTTOOLINFOW info{};
    info.cbSize = TTTOOLINFOW_V2_SIZE; // both versions of the common controls take this size
    info.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    info.hwnd = GetParent(tool);
    info.uId = reinterpret_cast<UINT_PTR>(tool);
    info.lpszText = const_cast<wchar_t*>(text); // read only, by the tooltip's contract
    return SendMessageW(tooltips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info)) != FALSE;
}

} // namespace ObLibX
