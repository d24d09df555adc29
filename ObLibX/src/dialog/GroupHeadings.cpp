#include "ObLibX/src/dialog/GroupHeadings.h"

#include <algorithm>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/ObWinGUI.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/FlatDressing.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\GroupHeadings.cpp";

constexpr LONG kHeadingHeight = 8; // dialog units
constexpr std::int32_t kHeadingSize = 11;
constexpr std::int32_t kHeadingWeight = 700;
constexpr LONG_PTR kButtonKind = 0xF; // the bits of a button's style that are its kind
// What a group box does besides showing its frame: it also ends a group of radio buttons.
constexpr DWORD kKeptStyle = WS_VISIBLE | WS_GROUP | WS_DISABLED;
constexpr DWORD kKeptExtended = WS_EX_RTLREADING | WS_EX_RIGHT;
constexpr int kNoId = -1;
constexpr int kNoIdShort = 0xFFFF;

bool IsGroupBox(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & kButtonKind) == BS_GROUPBOX &&
           IsOfClass(window, L"button");
}

// Top left and width of the group, eight dialog units tall; in the dialog's client coordinates.
RECT HeadingRect(HWND dialog, HWND group) {
    RECT rect{};
    GetWindowRect(group, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    RECT units{0, 0, 0, kHeadingHeight};
    MapDialogRect(dialog, &units);
    rect.bottom = rect.top + units.bottom;
    return rect;
}

int HeadingId(HWND dialog, HWND group, bool isFlat) {
    const int id = GetDlgCtrlID(group);
    return isFlat && (id == kNoId || id == kNoIdShort) ? FirstFreeControlId(dialog) : id;
}

HWND MakeHeadingWindow(HWND dialog, HWND group, int id) {
    ObLib::ObString text;
    ObLib::GetWindowTextString(group, text);
    const RECT rect = HeadingRect(dialog, group);
    const auto extended = static_cast<DWORD>(GetWindowLongPtrW(group, GWL_EXSTYLE)) & kKeptExtended;
    const auto kept = static_cast<DWORD>(GetWindowLongPtrW(group, GWL_STYLE)) & kKeptStyle;
    const HWND heading =
        CreateWindowExW(extended, L"static", text.CStr(), WS_CHILD | kept, rect.left, rect.top,
                        rect.right - rect.left, rect.bottom - rect.top, dialog,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    if (heading == nullptr) return nullptr;
    SetWindowPos(heading, group, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return heading;
}

// The height that the text needs in a font.
int TextHeight(HWND heading, HFONT font) {
    ObAssert(font != nullptr);
    ObLib::ObString text;
    ObLib::GetWindowTextString(heading, text);
    RECT needed{};
    GetClientRect(heading, &needed);
    const HDC dc = GetDC(heading);
    const HGDIOBJ old = SelectObject(dc, font);
    const int height = DrawTextW(dc, text.CStr(), -1, &needed, DT_CALCRECT | DT_WORDBREAK);
    SelectObject(dc, old);
    ReleaseDC(heading, dc);
    return height;
}

void MakeBold(HWND dialog, HWND heading) {
    const HFONT bold = InitSharedBoldFont(dialog).bold;
    SendMessageW(heading, WM_SETFONT, reinterpret_cast<WPARAM>(bold), FALSE);
    RECT rect{};
    GetWindowRect(heading, &rect);
    const int needed = TextHeight(heading, bold) + 2;
    if (needed <= rect.bottom - rect.top) return;
    SetWindowPos(heading, nullptr, 0, 0, rect.right - rect.left, needed,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Empty without a maker.
std::unique_ptr<ObCustomControl> Dressed(int id, HWND heading) {
    const MakeHeading make = TheControlMaker().heading;
    if (make == nullptr) return nullptr;
    auto object = make(id, kHeadingSize, kHeadingWeight);
    if (object) object->window = heading;
    return object;
}

} // namespace

std::vector<std::unique_ptr<ObCustomControl>> ReplaceGroupBoxes(HWND dialog, bool isFlat) {
    std::vector<std::unique_ptr<ObCustomControl>> headings;
    ForEachChild(dialog, [&](HWND child) {
        if (!IsGroupBox(child)) return;
        const int id = HeadingId(dialog, child, isFlat);
        const HWND heading = MakeHeadingWindow(dialog, child, id);
        if (heading == nullptr) return; // the group box stays
        DestroyWindow(child);
        if (auto object = isFlat ? Dressed(id, heading) : nullptr) {
            headings.push_back(std::move(object));
        } else {
            MakeBold(dialog, heading);
        }
    });
    return headings;
}

} // namespace ObLibX
