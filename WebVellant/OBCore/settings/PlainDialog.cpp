#include "OBCore/settings/PlainDialog.h"

#include "OBCore/modules/ResourceModule.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/dialog/DialogRun.h"
#include "ObLibX/src/dialog/WindowCentring.h"

namespace obcore {
namespace {

constexpr int kCancelled = 2;

INT_PTR AsResult(HGDIOBJ brush) { return reinterpret_cast<INT_PTR>(brush); }

// The text's colour goes with the ground: in a dark scheme black text would be on a dark plate.
INT_PTR ColourLabel(HDC context) {
    SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(context, GetSysColor(COLOR_WINDOW));
    return AsResult(GetSysColorBrush(COLOR_WINDOW));
}

} // namespace

INT_PTR PlainDialog::Show(int templateId, HWND owner) {
    return ObLibX::RunDialog(ResourceModule(), templateId, owner, &PlainDialog::Procedure,
                             reinterpret_cast<LPARAM>(this), 0);
}

INT_PTR PlainDialog::OnMessage(HWND window, UINT message, WPARAM wParam) {
    switch (message) {
    case WM_INITDIALOG:
        OnOpen(window);
        ObLibX::CenterWindow(window, nullptr, nullptr, true);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(window, kCancelled);
        } else {
            OnCommand(window, LOWORD(wParam));
        }
        return TRUE;
    case WM_CTLCOLORDLG:
        return AsResult(GetStockObject(WHITE_BRUSH));
    case WM_CTLCOLORSTATIC:
        return ColourLabel(reinterpret_cast<HDC>(wParam));
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK PlainDialog::Procedure(HWND window, UINT message, WPARAM wParam,
                                        LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(window, DWLP_USER, lParam);
    auto* const dialog = reinterpret_cast<PlainDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr) return FALSE; // messages before WM_INITDIALOG
    return ObLib::GuardedElse([&] { return dialog->OnMessage(window, message, wParam); },
                              [&]() -> INT_PTR {
                                  if (message == WM_INITDIALOG) EndDialog(window, kCancelled);
                                  return TRUE;
                              });
}

} // namespace obcore
