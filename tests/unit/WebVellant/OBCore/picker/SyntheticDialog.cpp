#include "tests/unit/WebVellant/OBCore/picker/SyntheticDialog.h"

namespace obtest {
namespace {

// Fixed distances from the dialog's right and lower edges.
constexpr int kOkFromRight = 180;
constexpr int kOkWidth = 75;
constexpr int kTypesWidth = 120;
constexpr int kTypesFromRight = 130;
constexpr int kMovingBoxWidth = 150;
constexpr int kMovingBoxFromRight = 320;

struct Template {
    DLGTEMPLATE head{.style = WS_POPUP | WS_CAPTION | WS_THICKFRAME | WS_VISIBLE,
                     .dwExtendedStyle = 0,
                     .cdit = 0,
                     .x = 0,
                     .y = 0,
                     .cx = 0,
                     .cy = 0};
    WORD menuClassTitle[3] = {};
};

HWND AddChild(HWND parent, const wchar_t* type, DWORD style) {
    return CreateWindowExW(0, type, nullptr, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                           nullptr, nullptr, nullptr);
}

} // namespace

SyntheticDialog::~SyntheticDialog() {
    if (IsWindow(dialog)) DestroyWindow(dialog);
}

HWND SyntheticDialog::Create(int width, int height) {
    const Template form;
    CreateDialogIndirectParamW(GetModuleHandleW(nullptr), &form.head, nullptr, &Procedure,
                               reinterpret_cast<LPARAM>(this));
    SetWindowPos(dialog, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
    return dialog;
}

INT_PTR SyntheticDialog::Run() {
    const Template form;
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &form.head, nullptr, &Procedure,
                                   reinterpret_cast<LPARAM>(this));
}

void SyntheticDialog::AddControls() {
    SetWindowPos(dialog, nullptr, 40, 30, 600, 300, SWP_NOZORDER);
    if (hasBox) nameBox = AddChild(dialog, L"ComboBoxEx32", CBS_DROPDOWN);
    fileTypes = AddChild(dialog, L"ComboBox", CBS_DROPDOWNLIST);
    if (hasOk) ok = AddChild(dialog, L"Button", BS_DEFPUSHBUTTON);
    LayOut();
}

void SyntheticDialog::LayOut() {
    RECT area{};
    GetClientRect(dialog, &area);
    const int typesLeft = area.right - kTypesFromRight;
    const int boxLeft = box == Box::Grows ? kBoxLeft : area.right - kMovingBoxFromRight;
    const int boxWidth = box == Box::Grows ? typesLeft - 10 - kBoxLeft : kMovingBoxWidth;
    MoveWindow(nameBox, boxLeft, kTop, boxWidth, kHeight, TRUE);
    MoveWindow(fileTypes, typesLeft, kTop, kTypesWidth, kHeight, TRUE);
    MoveWindow(ok, area.right - kOkFromRight, kTop + kRowHeight, kOkWidth, kHeight, TRUE);
}

INT_PTR CALLBACK SyntheticDialog::Procedure(HWND dialog, UINT message, WPARAM wParam,
                                            LPARAM lParam) {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    auto* const self = reinterpret_cast<SyntheticDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self) return FALSE;
    switch (message) {
    case WM_INITDIALOG:
        self->dialog = dialog;
        self->AddControls();
        break;
    case WM_SIZE:
        self->LayOut();
        break;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize.x = self->ownMinimum;
        break;
    default:
        break;
    }
    if (self->onMessage) self->onMessage(dialog, message, wParam);
    return message == WM_GETMINMAXINFO;
}

RECT PlaceOnScreen(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

int WidthOf(const RECT& place) { return place.right - place.left; }
int HeightOf(const RECT& place) { return place.bottom - place.top; }

void SetWidth(HWND dialog, int width) {
    SetWindowPos(dialog, nullptr, 0, 0, width, HeightOf(PlaceOnScreen(dialog)),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace obtest
