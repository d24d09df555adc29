#include "ObLibX/src/controls/ObCustCombo.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <utility>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ObWinGUI.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/ImageSet.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObCustCombo.cpp";

constexpr COLORREF kFocusText = 0xFFFFFF;
constexpr std::int32_t kSimpleFrame = 1; // of the edit, in pixels at every scale
constexpr int kTextPadding = 4;          // at 96 dpi

// After these the stock combo box has painted something over what the object painted.
constexpr UINT kRepaintedAfter[] = {
    // The button, pressed or not, and the frame of the focus, without WM_PAINT.
    WM_ENABLE, WM_SETFOCUS, WM_KILLFOCUS, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_LBUTTONUP,
    WM_CAPTURECHANGED, CB_SHOWDROPDOWN, WM_UPDATEUISTATE,
    // Another text, also without WM_PAINT. The list selects by WM_COMMAND.
    WM_SETTEXT, WM_COMMAND, WM_KEYDOWN, WM_CHAR, WM_MOUSEWHEEL, CB_SETCURSEL, CB_SELECTSTRING,
    CB_RESETCONTENT, CB_DELETESTRING,
    // Its parts have other places, and the arrow may have another picture.
    WM_SETFONT, WM_SIZE};

// After these the stock combo box has placed its list anew.
constexpr UINT kListPlacedAfter[] = {WM_SIZE, WM_SETFONT, CB_SETITEMHEIGHT};

template <std::size_t Count>
bool IsOneOf(const UINT (&messages)[Count], UINT message) {
    return std::ranges::find(messages, message) != std::end(messages);
}

// What is excluded from a device context for a scope, which may be somebody else's.
class SavedClip {
public:
    explicit SavedClip(HDC dc) : dc_(dc), saved_(SaveDC(dc)) {}
    ~SavedClip() { RestoreDC(dc_, saved_); }
    SavedClip(const SavedClip&) = delete;
    SavedClip& operator=(const SavedClip&) = delete;

private:
    HDC dc_;
    int saved_;
};

// How many units of a text fit a width, beginning with the first.
std::size_t FittingUnits(HDC dc, const ObLib::ObString& text, int width) {
    int fitting = 0;
    SIZE size{};
    GetTextExtentExPointW(dc, text.CStr(), static_cast<int>(std::wcslen(text.CStr())),
                          std::max(width, 0), &fitting, nullptr, &size);
    return static_cast<std::size_t>(std::max(fitting, 0));
}

// A frame over the whole window, border and client area.
void FrameNonClient(HWND window, int width) {
    const HDC dc = GetWindowDC(window);
    if (dc == nullptr) return;
    RECT rect{};
    GetWindowRect(window, &rect);
    FrameArea(dc, {0, 0, rect.right - rect.left, rect.bottom - rect.top},
              GetPaletteColor(kPaletteFrame), width);
    ReleaseDC(window, dc);
}

PixelRect OnScreen(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return AsPixels(rect);
}

void TakeEdgesOff(HWND window) {
    constexpr LONG_PTR kEdges = WS_EX_CLIENTEDGE | WS_EX_DLGMODALFRAME;
    SetWindowLongPtrW(window, GWL_EXSTYLE, GetWindowLongPtrW(window, GWL_EXSTYLE) & ~kEdges);
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

} // namespace

// ---- All combo boxes

ObFlatComboBoxBase::ObFlatComboBoxBase(std::int32_t controlId, ComboKind kind)
    : ObCustomControl(controlId, nullptr, L"", 0), kind_(kind) {}

// Windows that outlive their object go on as stock ones.
ObFlatComboBoxBase::~ObFlatComboBoxBase() {
    RemoveSubclass(window, &ObFlatComboBoxBase::ComboProcedure, this);
    RemoveSubclass(listWindow, &ObFlatComboBoxBase::ListProcedure, this);
}

void ObFlatComboBoxBase::Attach(HWND attached) {
    ObCustomControl::Attach(attached);
    TakeEdgesOff(window);
    FindParts();
    SetClassLongPtrW(listWindow, GCL_STYLE,
                     static_cast<LONG_PTR>(GetClassLongPtrW(listWindow, GCL_STYLE) &
                                           ~static_cast<ULONG_PTR>(CS_DROPSHADOW)));
    PlaceList();
    for (const auto& [part, procedure] :
         {std::pair{window, &ObFlatComboBoxBase::ComboProcedure},
          std::pair{listWindow, &ObFlatComboBoxBase::ListProcedure}}) {
        AddSubclass(part, procedure, this);
    }
}

// A list alone has no window for its item: the combo box itself shows it, which some systems
// report as its own handle and others as none.
void ObFlatComboBoxBase::FindParts() {
    comboInfo.cbSize = sizeof comboInfo;
    ObAssert(GetComboBoxInfo(window, &comboInfo));
    if (kind_ == ComboKind::DropdownList && comboInfo.hwndItem == nullptr) {
        comboInfo.hwndItem = window;
    }
    ObAssert(comboInfo.hwndItem != nullptr);
    ObAssert(comboInfo.hwndList != nullptr);
    listWindow = comboInfo.hwndList;
}

// A simple combo box has its list as a child, the others on the desktop.
void ObFlatComboBoxBase::PlaceList() {
    const PixelRect list = OnScreen(listWindow);
    const PixelRect place = PlaceComboList(kind_, OnScreen(window), ItemOnScreen(), list.Height());
    RECT rect = AsRect(place);
    if (kind_ == ComboKind::Simple) {
        MapWindowPoints(HWND_DESKTOP, window, reinterpret_cast<POINT*>(&rect), 2);
    }
    SetWindowPos(listWindow, nullptr, rect.left, rect.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// An edit with a frame is lower than what is inside its frame: measured from the edit, the list
// would cover the frame.
PixelRect ObFlatComboBoxBase::ItemOnScreen() const {
    const PixelRect item = OnScreen(comboInfo.hwndItem);
    if (kind_ != ComboKind::Simple || editObject == nullptr) return item;
    if (editObject->frameWindow == nullptr) return item;
    const PixelRect frame = OnScreen(editObject->frameWindow);
    const std::int32_t width = editObject->frameWidth;
    return {item.left, frame.top + width, item.right, frame.bottom - width};
}

// At each drop the stock combo box places its list.
void ObFlatComboBoxBase::PlaceDroppedList(WINDOWPOS& place) const {
    if (kind_ == ComboKind::Simple || (place.flags & SWP_NOMOVE) != 0) return;
    place.y = DroppedListTop(OnScreen(window), place.y);
}

void ObFlatComboBoxBase::MakeEdit(bool hideFrame, std::int32_t frameWidth) {
    editObject = std::make_unique<ObFlatEdit>(GetDlgCtrlID(comboInfo.hwndItem));
    editObject->hideFrame = hideFrame;
    editObject->frameWidth = frameWidth;
    editObject->Attach(comboInfo.hwndItem);
}

void ObFlatComboBoxBase::OnEditNcPaint() { FrameNonClient(window, 1); }
void ObFlatComboBoxBase::OnListNcPaint() { FrameNonClient(listWindow, 1); }

LRESULT CALLBACK ObFlatComboBoxBase::ComboProcedure(HWND window, UINT message, WPARAM wParam,
                                                    LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const combo = reinterpret_cast<ObFlatComboBoxBase*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatComboBoxBase::ComboProcedure, combo);
        combo->OnWindowGone();
        return CallNextSubclass(window, message, wParam, lParam);
    }
    const auto own = ObLib::Guarded(std::optional<LRESULT>(0),
                                    [&] { return combo->OnMessage(message, wParam, lParam); });
    if (own) return *own;
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (IsWindow(window)) {
        static_cast<void>(ObLib::RanGuarded([&] { combo->OnHandled(message); }));
    }
    return result;
}

LRESULT CALLBACK ObFlatComboBoxBase::ListProcedure(HWND window, UINT message, WPARAM wParam,
                                                   LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const combo = reinterpret_cast<ObFlatComboBoxBase*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatComboBoxBase::ListProcedure, combo);
        combo->listWindow = nullptr;
        return CallNextSubclass(window, message, wParam, lParam);
    }
    if (message == WM_WINDOWPOSCHANGING && combo->window != nullptr) {
        combo->PlaceDroppedList(*reinterpret_cast<WINDOWPOS*>(lParam));
    }
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (message == WM_NCPAINT) {
        static_cast<void>(ObLib::RanGuarded([combo] { combo->OnListNcPaint(); }));
    }
    return result;
}

std::optional<LRESULT> ObFlatComboBoxBase::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CTLCOLOREDIT || message == WM_CTLCOLORSTATIC) {
        const bool isEdit = editObject && reinterpret_cast<HWND>(lParam) == comboInfo.hwndItem;
        if (isEdit) return ColorsOfEdit(message, wParam, lParam);
    }
    if (!PaintsItself()) return std::nullopt;
    switch (message) {
    case WM_PAINT: {
        const PaintDc dc(window);
        if (dc.Get() != nullptr) Paint(dc.Get());
        return 0;
    }
    case WM_PRINTCLIENT:
        Paint(reinterpret_cast<HDC>(wParam));
        return 0;
    case WM_ERASEBKGND:
        return TRUE;
    default:
        return std::nullopt;
    }
}

// A stock combo box passes the question on to the dialog, which doesn't know the edit.
LRESULT ObFlatComboBoxBase::ColorsOfEdit(UINT message, WPARAM wParam, LPARAM lParam) {
    const HBRUSH brush =
        editObject->OnCtlColor(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    return brush != nullptr ? reinterpret_cast<LRESULT>(brush)
                            : DefWindowProcW(window, message, wParam, lParam);
}

void ObFlatComboBoxBase::OnHandled(UINT message) {
    if (message == WM_NCPAINT) OnEditNcPaint();
    if (IsOneOf(kRepaintedAfter, message)) Refresh();
}

// ---- Simple

ObFlatComboBoxSimple::ObFlatComboBoxSimple(std::int32_t controlId)
    : ObFlatComboBoxBase(controlId, ComboKind::Simple) {}

void ObFlatComboBoxSimple::Attach(HWND attached) {
    ObFlatComboBoxBase::Attach(attached);
    MakeEdit(false, kSimpleFrame);
    PlaceList();
}

void ObFlatComboBoxSimple::OnHandled(UINT message) {
    ObFlatComboBoxBase::OnHandled(message);
    if (IsOneOf(kListPlacedAfter, message)) PlaceList();
}

// ---- With a button

void ObFlatComboBoxDropdownBase::Attach(HWND attached) {
    buttonHot = false; // of the window before, in a dialog that is opened again
    animatedButtonColor = kNoColor;
    ObFlatComboBoxBase::Attach(attached);
    LoadArrows();
    buttonWidth = WantedButtonWidth();
    PlaceButton();
}

void ObFlatComboBoxDropdownBase::LoadArrows() {
    const std::int32_t scale = ScaleOfDpi(GetDpi());
    arrowImage = ImageOfScale(ControlImage::DownArrow, scale);
    arrowImageDisabled = ImageOfScale(ControlImage::DownArrowDisabled, scale);
    arrowSize = ImageSize(arrowImage.Get());
}

void ObFlatComboBoxDropdownBase::PlaceButton() {
    buttonRectangle = ComboButton(ClientArea(window), buttonWidth);
    arrowPosition = {
        buttonRectangle.left + (buttonRectangle.Width() - static_cast<int>(arrowSize.cx)) / 2,
        buttonRectangle.top + (buttonRectangle.Height() - static_cast<int>(arrowSize.cy)) / 2};
}

void ObFlatComboBoxDropdownBase::Refresh() {
    if (window == nullptr) return;
    LoadArrows();
    PlaceButton();
    ObFlatComboBoxBase::Refresh();
}

std::optional<LRESULT> ObFlatComboBoxDropdownBase::OnMessage(UINT message, WPARAM wParam,
                                                             LPARAM lParam) {
    if (message == WM_MOUSEMOVE) OnMouseMove(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    if (message == WM_MOUSELEAVE) OnMouseLeave();
    return ObFlatComboBoxBase::OnMessage(message, wParam, lParam);
}

// A window that is disabled under the mouse isn't told of the mouse's leaving.
void ObFlatComboBoxDropdownBase::OnHandled(UINT message) {
    if (message == WM_ENABLE && !IsWindowEnabled(window)) OnMouseLeave();
    ObFlatComboBoxBase::OnHandled(message);
}

// No hover where a fade can't be seen or colours are the user's.
void ObFlatComboBoxDropdownBase::OnMouseMove(int x, int y) {
    if (!buttonRectangle.Contains(PixelPoint{x, y})) {
        OnMouseLeave();
        return;
    }
    if (buttonHot || IsLowColor() || IsHighContrast()) return;
    buttonHot = true;
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, window, 0};
    TrackMouseEvent(&leave);
    fade.Start(*this, GetFillColor(), GetHoverColor());
}

void ObFlatComboBoxDropdownBase::OnMouseLeave() {
    if (!buttonHot) return;
    fade.Stop();
    buttonHot = false;
    animatedButtonColor = kNoColor;
    RepaintButton();
}

std::uint32_t ObFlatComboBoxDropdownBase::SetAnimatedColor(COLORREF color) {
    animatedButtonColor = color;
    RepaintButton();
    return 1;
}

void ObFlatComboBoxDropdownBase::RepaintButton() {
    const RECT button = AsRect(buttonRectangle);
    InvalidateRect(window, &button, FALSE);
}

PixelRect ObFlatComboBoxDropdownBase::TextSpace(const PixelRect& client) const {
    return {client.left + 1, client.top + 1, buttonRectangle.left, client.bottom - 1};
}

// Not over the edit, which paints itself.
void ObFlatComboBoxDropdownBase::Paint(HDC dc) {
    const OffscreenPaint picture(window, dc);
    if (!picture) return;
    const SavedClip clip(dc);
    if (comboInfo.hwndItem != window) {
        const PixelRect edit = RectInParent(comboInfo.hwndItem);
        ExcludeClipRect(dc, edit.left, edit.top, edit.right, edit.bottom);
    }
    FillArea(picture.Dc(), picture.Area(), GetFillColor());
    PaintText(picture.Dc(), TextSpace(picture.Area()));
    PaintButton(picture.Dc());
    FrameArea(picture.Dc(), picture.Area(), GetPaletteColor(kPaletteFrame));
    picture.Show();
}

void ObFlatComboBoxDropdownBase::PaintButton(HDC dc) {
    const bool isFading = animatedButtonColor != kNoColor && !IsHighContrast();
    const COLORREF fill = isFading ? animatedButtonColor : GetFillColor();
    FillArea(dc, buttonRectangle, fill);
    const bool isOn = IsWindowEnabled(window) != FALSE;
    DrawImage(dc, isOn ? arrowImage.Get() : arrowImageDisabled.Get(), arrowPosition.x,
              arrowPosition.y);
    PixelRect line = buttonRectangle;
    line.right = std::min(line.left + 1, line.right);
    FillArea(dc, line, GetPaletteColor(kPaletteFrame));
}

// ---- With an edit

ObFlatComboBoxDropdown::ObFlatComboBoxDropdown(std::int32_t controlId)
    : ObFlatComboBoxDropdownBase(controlId, ComboKind::Dropdown) {}

void ObFlatComboBoxDropdown::Attach(HWND attached) {
    ObFlatComboBoxDropdownBase::Attach(attached);
    MakeEdit(true, kSimpleFrame);
}

std::int32_t ObFlatComboBoxDropdown::WantedButtonWidth() const {
    return ButtonBesideEdit(OnScreen(window), OnScreen(comboInfo.hwndItem));
}

// ---- A list alone

ObFlatComboBoxDropdownList::ObFlatComboBoxDropdownList(std::int32_t controlId)
    : ObFlatComboBoxDropdownBase(controlId, ComboKind::DropdownList) {}

std::int32_t ObFlatComboBoxDropdownList::WantedButtonWidth() const {
    return static_cast<std::int32_t>(arrowSize.cx) + 2 * Scale(padding);
}

void ObFlatComboBoxDropdownList::PaintText(HDC dc, const PixelRect& area) {
    const bool hasFocus = GetFocus() == window;
    if (hasFocus) FillArea(dc, area, GetSysColor(COLOR_HOTLIGHT));
    const HFONT font = GetFont(fontSize, fontName, fontWeight, 0);
    ObAssert(font != nullptr);
    const HGDIOBJ old = SelectObject(dc, font);
    ObLib::ObString text;
    ObLib::GetWindowTextString(window, text);
    RECT place = AsRect(area);
    place.left += Scale(kTextPadding);
    const std::size_t count =
        WholeCharacters(text.CStr(), FittingUnits(dc, text, place.right - place.left));
    SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, ListTextColor(hasFocus));
    DrawTextW(dc, text.CStr(), static_cast<int>(count), &place,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    SelectObject(dc, old);
}

// In high contrast the hot colour is one that is read on a window, so a window's is read on it;
// white may not be.
COLORREF ObFlatComboBoxDropdownList::ListTextColor(bool hasFocus) {
    if (hasFocus) return IsHighContrast() ? GetSysColor(COLOR_WINDOW) : kFocusText;
    return IsWindowEnabled(window) ? GetTextColor() : kDisabledTextColor;
}

} // namespace ObLibX
