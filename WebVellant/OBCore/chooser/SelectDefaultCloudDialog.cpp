#include "OBCore/chooser/SelectDefaultCloudDialog.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "OBCore/chooser/CloudChoice.h"
#include "OBCore/chooser/CloudRows.h"
#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ProductIcon.h"
#include "OBCore/modules/ResourceModule.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

constexpr COLORREF kHeadlineColour = 0x0000EA; // a red
constexpr wchar_t kPartsProperty[] = L"ObChooserParts";
constexpr UINT kScaleChanged = WM_APP; // the dialog posts it to itself

// What the open dialog owns. A property of its window, since the window's own slot has the job.
struct DialogParts {
    ProductIcon icon;
    ObLib::UniqueFont headline;
};

// One and a half times the dialog's font. Empty when it can't be made.
ObLib::UniqueFont HeadlineFont(HWND window) {
    LOGFONTW font{};
    const auto own = reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0));
    if (!own || !GetObjectW(own, sizeof font, &font)) return {};
    font.lfWidth = font.lfWidth * 12 / 8;
    font.lfHeight = font.lfHeight * 12 / 8;
    font.lfWeight = FW_BOLD;
    return ObLib::UniqueFont(CreateFontIndirectW(&font));
}

void SetHeadlineFont(HWND window, DialogParts& parts) {
    ObLib::UniqueFont font = HeadlineFont(window);
    if (!font) return;
    SendDlgItemMessageW(window, OB_CHOOSER_HEADLINE, WM_SETFONT,
                        reinterpret_cast<WPARAM>(font.Get()), TRUE);
    parts.headline = std::move(font);
}

// One column without a header, of which the rows are the whole width.
void PrepareList(HWND list) {
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP,
                                        LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
    LVCOLUMNW column{.mask = LVCF_FMT, .fmt = LVCFMT_LEFT};
    ListView_InsertColumn(list, 0, &column);
}

// As wide as the longest text, and at least as wide as the list, so that a click anywhere in a row
// counts.
void FitColumn(HWND list) {
    ListView_SetColumnWidth(list, 0, LVSCW_AUTOSIZE);
    RECT client{};
    GetClientRect(list, &client);
    const int room = static_cast<int>(client.right);
    ListView_SetColumnWidth(list, 0, std::max(ListView_GetColumnWidth(list, 0), room));
}

// The first row takes the arrow keys and the space bar as soon as the dialog is open.
void FocusFirstRow(HWND list) {
    ListView_SetItemState(list, 0, LVIS_FOCUSED | LVIS_SELECTED, LVIS_FOCUSED | LVIS_SELECTED);
}

RECT PlaceIn(HWND window, HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// Who has no account reads where links are switched off. The text takes the list's lower end.
void ShowHint(HWND window) {
    const HWND list = GetDlgItem(window, OB_CHOOSER_LIST);
    if (HasAccount(list)) return;
    const HWND hint = GetDlgItem(window, OB_CHOOSER_HINT);
    const RECT place = PlaceIn(window, list);
    RECT gap{0, 0, 0, 4}; // dialog units
    MapDialogRect(window, &gap);
    SetWindowPos(list, nullptr, 0, 0, place.right - place.left,
                 PlaceIn(window, hint).top - gap.bottom - place.top, SWP_NOMOVE | SWP_NOZORDER);
    SetWindowTextW(hint, LoadText(TextId::NoAccountHint).c_str());
    ShowWindow(hint, SW_SHOW);
}

void ShowRows(HWND window, const OBAttachJob& job) {
    const HWND list = GetDlgItem(window, OB_CHOOSER_LIST);
    PrepareList(list);
    SelectCloudRows(window, job);
    ShowHint(window);
    FitColumn(list);
    FocusFirstRow(list);
}

// The window owns them from here on. Null when they can't be attached.
DialogParts* AttachParts(HWND window) {
    auto parts = std::make_unique<DialogParts>();
    return SetPropW(window, kPartsProperty, parts.get()) ? parts.release() : nullptr;
}

void Open(HWND window, OBAttachJob& job) {
    SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(&job));
    DialogParts* const parts = AttachParts(window);
    if (parts) parts->icon.Set(window);
    ShowRows(window, job);
    if (parts) SetHeadlineFont(window, *parts);
    EnableWindow(GetDlgItem(window, OB_CHOOSER_CONTINUE), FALSE);
    CheckDlgButton(window, OB_CHOOSER_DEFAULT, BST_CHECKED);
}

// The window has come to a monitor of another scale. The system's dialog code has enlarged the
// dialog and given the controls its font; what was set by hand is set anew.
void FollowScale(HWND window) {
    if (auto* const parts = static_cast<DialogParts*>(GetPropW(window, kPartsProperty))) {
        parts->icon.Set(window);
        SetHeadlineFont(window, *parts);
    }
    FitColumn(GetDlgItem(window, OB_CHOOSER_LIST));
}

void Close(HWND window) {
    const std::unique_ptr<DialogParts> ended(
        static_cast<DialogParts*>(RemovePropW(window, kPartsProperty)));
}

void OnCommand(HWND window, WORD id) {
    if (id == OB_CHOOSER_CONTINUE) OnSelectOk(window);
    if (id == IDCANCEL) EndDialog(window, kNothingChosen);
}

void OnNotify(HWND window, const NMHDR& header) {
    if (header.idFrom != OB_CHOOSER_LIST || header.code != LVN_ITEMCHANGED) return;
    OnListRowChanged(window, reinterpret_cast<const NMLISTVIEW&>(header));
}

// What a colour message returns: the brush, or 0 for the system's own colours.
INT_PTR ColourLabel(HWND window, HDC context, HWND label) {
    if (label != GetDlgItem(window, OB_CHOOSER_HEADLINE)) return 0;
    SetTextColor(context, kHeadlineColour);
    SetBkMode(context, TRANSPARENT);
    return reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH));
}

INT_PTR OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        Open(window, *reinterpret_cast<OBAttachJob*>(lParam));
        return TRUE;
    case WM_COMMAND:
        OnCommand(window, LOWORD(wParam));
        return TRUE;
    case WM_NOTIFY:
        OnNotify(window, *reinterpret_cast<const NMHDR*>(lParam));
        return FALSE;
    case WM_DPICHANGED: // the system's dialog code works on it after this procedure
        PostMessageW(window, kScaleChanged, 0, 0);
        return FALSE;
    case kScaleChanged:
        FollowScale(window);
        return TRUE;
    case WM_CTLCOLORSTATIC:
        return ColourLabel(window, reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_DESTROY:
        Close(window);
        return FALSE;
    default:
        return FALSE;
    }
}

// A dialog that can't be filled counts as cancelled. A later message that fails has done nothing.
INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    return ObLib::GuardedElse([&] { return OnMessage(window, message, wParam, lParam); },
                              [&]() -> INT_PTR {
                                  if (message == WM_INITDIALOG) EndDialog(window, kNothingChosen);
                                  return TRUE;
                              });
}

// The class of the list may not be registered in the process yet.
void RegisterList() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
}

} // namespace

bool ShowSelectDefaultCloudDialog(HWND owner, OBAttachJob& job) {
    RegisterList();
    return DialogBoxParamW(ResourceModule(), MAKEINTRESOURCEW(OB_CHOOSER), owner, &Procedure,
                           reinterpret_cast<LPARAM>(&job)) == kProviderChosen;
}

} // namespace obcore
