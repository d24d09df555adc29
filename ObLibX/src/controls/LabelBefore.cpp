#include "ObLibX/src/controls/LabelBefore.h"

#include <string>

#include "ObLib/Src/Win32/ObWinGUI.h"
#include "ObLibX/src/dialog/FlatDressing.h"

namespace ObLibX {
namespace {

// "&&" is one "&"; any other "&" underlines what follows.
std::wstring WithoutAccessKey(const wchar_t* text) {
    std::wstring plain;
    for (; *text != 0; ++text) {
        if (*text == L'&' && *++text == 0) break;
        plain += *text;
    }
    return plain;
}

bool TakesFocus(HWND window) { return (GetWindowLongPtrW(window, GWL_STYLE) & WS_TABSTOP) != 0; }

} // namespace

ObLib::ObString LabelBefore(HWND window) {
    ObLib::ObString text;
    for (HWND before = GetWindow(window, GW_HWNDPREV); before != nullptr && !TakesFocus(before);
         before = GetWindow(before, GW_HWNDPREV)) {
        if (!IsOfClass(before, L"Static")) continue;
        ObLib::GetWindowTextString(before, text);
        if (text.HasText()) return ObLib::ObString(WithoutAccessKey(text.CStr()).c_str());
    }
    return {};
}

} // namespace ObLibX
