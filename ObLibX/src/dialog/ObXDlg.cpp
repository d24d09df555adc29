#include "ObLibX/src/dialog/ObXDlg.h"

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/ObMacro.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DialogRun.h"
#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/FlatDressing.h"
#include "ObLibX/src/dialog/GroupHeadings.h"
#include "ObLibX/src/dialog/Tooltips.h"
#include "ObLibX/src/dialog/WindowCentring.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObXDlg.cpp";

constexpr int kResultOk = 1;
constexpr int kResultCancel = 2;

LPARAM AsParameter(ObXDlg* dialog) { return reinterpret_cast<LPARAM>(dialog); }

void GiveEditsABorder(HWND dialog) {
    ForEachChild(dialog, [](HWND child) {
        if (!IsOfClass(child, L"Edit")) return;
        SetWindowLongPtrW(child, GWL_STYLE, GetWindowLongPtrW(child, GWL_STYLE) | WS_BORDER);
        SetWindowPos(child, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    });
}

// One brush for all dialogs, of the colour that was asked for last.
HBRUSH DialogBrush(COLORREF color) {
    static ObLib::UniqueBrush brush;
    static COLORREF brushColor = kNoColor;
    if (!brush || brushColor != color) {
        brush.Reset(CreateSolidBrush(color));
        brushColor = color;
    }
    return brush.Get();
}

} // namespace

ObXDlg::ObXDlg(std::int32_t dialogTemplate, HWND parent, std::uint32_t help, bool isCentered)
    : parentWindow(parent), templateId(dialogTemplate), helpId(help), centerOnOpen(isCentered) {}

// A modeless dialog's window may still be there: it mustn't find its object any more. So OnDestroy
// doesn't run then.
ObXDlg::~ObXDlg() {
    if (window != nullptr) {
        SetWindowLongPtrW(window, DWLP_USER, 0);
        DestroyWindow(window);
    }
    DestroyTooltips();
}

std::int32_t ObXDlg::DoModal() {
    isModeless = false;
    OnPreCreate();
    const bool hasOwner =
        parentWindow != nullptr && (keepHiddenParent || IsWindowVisible(parentWindow));
    const INT_PTR result =
        RunDialog(ObLib::AppGlobals().languageModule, templateId, hasOwner ? parentWindow : nullptr,
                  &ObXDlg::Procedure, AsParameter(this), 0);
    ObAssert(result != -1);
    window = nullptr;
    return ObLib::CheckedInt32(result);
}

void ObXDlg::Create(HWND parent) {
    ObAssert(window == nullptr);
    parentWindow = parent;
    isModeless = true;
    OnPreCreate();
    const HWND created = CreateModelessDialog(ObLib::AppGlobals().languageModule, templateId,
                                              parent, &ObXDlg::Procedure, AsParameter(this), 0);
    ObAssert(created != nullptr);
    window = created;
}

bool ObXDlg::OnInitDialog() {
    ObAssert(IsWindow(window));
    LoadDialogDefaults();
    tooltipWindow_ = nullptr; // that of an earlier opening has gone
    auto headings = ReplaceGroupBoxes(window, isFlat);
    for (auto& heading : headings) TakeHeading(std::move(heading));
    if (isFlat) {
        DressControls();
    } else {
        GiveEditsABorder(window);
    }
    if (centerOnOpen) CenterWindow(window, nullptr, nullptr, true);
    return false;
}

void ObXDlg::DressControls() {
    auto made =
        CreateFlatControls(window, templateId, [&](HWND child) { return HasObjectFor(child); });
    for (auto& control : made) AddControl(std::move(control));
    PrepareControls();
    ObPropSheet* const sheet = EnclosingSheet();
    for (const auto& [id, control] : controls_) {
        const HWND item = control->window;
        ObAssert(item != nullptr);
        control->ownerPage = sheet;
        control->Attach(item);
        if (control->tooltipText.HasText()) AddTooltip(item, control->tooltipText.CStr());
    }
}

// An object without a window is one that the template has no window for.
void ObXDlg::PrepareControls() {
    std::vector<ObCustomControl*> controls;
    for (const auto& [id, control] : controls_) {
        if (control->window == nullptr) control->window = GetItem(id, true);
        control->TakePaletteColors(); // those of an earlier opening may have changed
        controls.push_back(control.get());
    }
    if (TheControlMaker().settle != nullptr) TheControlMaker().settle(window, controls);
}

// Objects are there before their window: of an earlier opening, or of the dialog's own. An object
// that would get two windows is a control id that is there twice.
bool ObXDlg::HasObjectFor(HWND child) {
    ObCustomControl* const object = ControlOf(child);
    if (object == nullptr) return false;
    ObAssert(object->window == child || !IsChild(window, object->window));
    object->window = child;
    return true;
}

void ObXDlg::TakeHeading(std::unique_ptr<ObCustomControl> heading) {
    if (!HasObjectFor(heading->window)) AddControl(std::move(heading));
}

ObPropSheet* ObXDlg::EnclosingSheet() {
    if (ownerSheet != nullptr) return ownerSheet;
    if (auto* const sheet = dynamic_cast<ObPropSheet*>(this)) return sheet;
    const auto* const page = dynamic_cast<ObPropPage*>(this);
    return page != nullptr ? &page->Sheet() : nullptr;
}

bool ObXDlg::EndWith(int result) {
    ObAssert(IsWindow(window));
    if (isModeless) {
        DestroyWindow(window);
    } else {
        EndDialog(window, result);
    }
    window = nullptr;
    return true;
}

bool ObXDlg::OnOK() { return EndWith(kResultOk); }

bool ObXDlg::OnCancel() { return EndWith(kResultCancel); }

bool ObXDlg::OnHelp() {
    ObAssert(IsWindow(window));
    return true;
}

bool ObXDlg::OnNotify(int, NMHDR*, LRESULT& result) {
    result = 0;
    return false;
}

bool ObXDlg::OnMeasureItem(int id, MEASUREITEMSTRUCT* data) {
    ObCustomControl* const control = isFlat ? GetControl(id) : nullptr;
    return control != nullptr && control->OnMeasureItem(data);
}

bool ObXDlg::OnDrawItem(int id, DRAWITEMSTRUCT* data) {
    ObCustomControl* const control = isFlat ? GetControl(id) : nullptr;
    return control != nullptr && control->OnDrawItem(data);
}

bool ObXDlg::OnCommand(WPARAM wParam, LPARAM lParam) {
    return OnCommandId(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
}

// A page's tooltip window has the window around the pages as its owner, and would stay there.
void ObXDlg::DestroyTooltips() {
    if (IsWindow(tooltipWindow_)) DestroyWindow(tooltipWindow_);
    tooltipWindow_ = nullptr;
}

bool ObXDlg::OnDestroy() {
    DestroyTooltips();
    window = nullptr;
    return false;
}

bool ObXDlg::OnColorChange() {
    for (const auto& [id, control] : controls_) {
        control->TakePaletteColors();
        control->Refresh();
    }
    // Common controls expect this of the window that they are on.
    ForEachChild(window, [](HWND child) { SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0); });
    return false;
}

HBRUSH ObXDlg::OnCtlColorDlg() {
    return isFlat && !IsHighContrast() ? DialogBrush(backgroundColor) : nullptr;
}

// A part of a control may have the id of another control, as the edit of a combo box.
ObCustomControl* ObXDlg::ControlOf(HWND control) const {
    const bool isPart = window != nullptr && GetParent(control) != window;
    return isPart ? nullptr : GetControl(GetDlgCtrlID(control));
}

HBRUSH ObXDlg::OnCtlColorStatic(HWND control, HDC dc) {
    if (!isFlat) return nullptr;
    if (ObCustomControl* const object = ControlOf(control)) return object->OnCtlColor(dc, control);
    ::SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    SetBkMode(dc, TRANSPARENT);
    return static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
}

HBRUSH ObXDlg::BrushOf(HWND control, HDC dc) const {
    ObCustomControl* const object = isFlat ? ControlOf(control) : nullptr;
    return object != nullptr ? object->OnCtlColor(dc, control) : nullptr;
}

HBRUSH ObXDlg::OnCtlColorBtn(HWND control, HDC dc) { return BrushOf(control, dc); }

HBRUSH ObXDlg::OnCtlColorEdit(HWND control, HDC dc) { return BrushOf(control, dc); }

bool ObXDlg::OnUpdateUIState(WORD action, WORD state) {
    if (!isFlat) return false;
    for (const auto& [id, control] : controls_) control->OnUpdateUIState(action, state);
    return false;
}

LRESULT ObXDlg::OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const bool isGesture = message == WM_GESTURE || message == WM_GESTURENOTIFY;
    return isGesture ? DefWindowProcW(window, message, wParam, lParam) : 0;
}

ObCustomControl* ObXDlg::GetControl(std::int32_t id) const {
    const auto found = controls_.find(id);
    return found == controls_.end() ? nullptr : found->second.get();
}

HWND ObXDlg::GetItem(std::int32_t id, bool mustExist) const {
    ObAssert(IsWindow(window));
    const HWND item = GetDlgItem(window, id);
    ObAssert(item != nullptr || !mustExist);
    return item;
}

void ObXDlg::AddControl(std::unique_ptr<ObCustomControl> control) {
    ObCustomControl& added = *control;
    ObAssert(!controls_.contains(added.id));
    controls_.emplace(added.id, std::move(control));
    added.OnCreated();
}

void ObXDlg::AddTooltip(HWND tool, const wchar_t* text) {
    if (tooltipWindow_ == nullptr) tooltipWindow_ = MakeTooltipWindow(window);
    if (tooltipWindow_ != nullptr) AddTool(tooltipWindow_, tool, text);
}

} // namespace ObLibX
