// Links: static texts of a dialog that are clicked.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ControlAccessible.h"
#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

class ObXDlg;

// The colour of a link, but in high contrast.
inline constexpr COLORREF kLinkColor = 0xCC6600;

// Makes a link of a static text that a dialog's template made: underlined, in a colour of its own,
// as large as its text, reached by Tab, clicked by the mouse, Space and Enter. It isn't one of the
// dialog's control objects: the dialog, flat or not, has it as a member, binds it before it opens
// and attaches it at the end of its OnInitDialog, so that its procedures are the outermost ones. A
// label that the dialog has dressed stays dressed. When the window is destroyed, the object may be
// attached again. On the dialog's thread. What an override throws ends in the window procedure.
class ObHyperlinkCtrl : private AccessibleSource {
public:
    // `boundTo`: the dialog that gets the clicks, not owned, or null.
    explicit ObHyperlinkCtrl(std::int32_t linkId, ObXDlg* boundTo = nullptr);
    ObHyperlinkCtrl(const ObHyperlinkCtrl&) = delete;
    ObHyperlinkCtrl& operator=(const ObHyperlinkCtrl&) = delete;

    // A window that is still there is a static text again.
    virtual ~ObHyperlinkCtrl();
    // Takes over the child of `dialog` that has the id; does nothing on an attached object. Without
    // such a child, and on a window that is another object's link, ends the process.
    virtual void Attach(HWND dialog);
    // The messages of the window. May destroy the object.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // The link was clicked. By default the dialog that it is bound to gets the id by OnCommandId,
    // with code 0. May destroy the object.
    virtual void OnClick();

    // Gives the window back what Attach took, but for its place. Nothing on an object that isn't
    // attached. Attach, the window's end and the destructor call it.
    void Detach();
    // Makes the window as large as its text, in the room that it had at Attach or was moved to by
    // the dialog last. Attach, WM_SETTEXT and WM_SETFONT do so; a dialog that moves the window may.
    void FitToText();
    // From now on the text is on this colour, but in high contrast; before, on the dialog's.
    void SetBackgroundColor(COLORREF color);

    bool attached = false;
    std::int32_t id; // of the control in its dialog
    COLORREF textColor = kLinkColor;
    COLORREF backgroundColor = 0; // counts when there is a brush
    ObLib::UniqueBrush brush;
    HWND dialogWindow = nullptr; // these are null while it isn't attached
    HWND window = nullptr;
    HFONT oldFont = nullptr; // what the window had; not owned, null for the system's
    ObLib::UniqueFont underlineFont;
    ObXDlg* handler; // gets the clicks

private:
    static LRESULT CALLBACK ControlProcedure(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam);
    static LRESULT CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
    static LRESULT OnDialogMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT OnDialogPaint(HWND dialog, WPARAM wParam, LPARAM lParam);
    static LRESULT OnDialogDestroy(HWND dialog, WPARAM wParam, LPARAM lParam);

    ObLib::ObString AccessibleName() override;
    LONG AccessibleRole() override;
    LONG AccessibleState() override;
    bool HasAccessibleAction() override;
    void DoAccessibleAction() override;

    void TakeWindow();
    void GiveWindowBack();
    void GiveDialogBack();
    LRESULT ToWindow(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnDestroy(WPARAM wParam, LPARAM lParam);
    LRESULT OnFocus(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMoved(WPARAM wParam, LPARAM lParam);
    LRESULT OnSetText(WPARAM wParam, LPARAM lParam);
    LRESULT OnSetFont(HFONT font, LPARAM lParam);
    LRESULT OnDialogCommand(WPARAM wParam);
    HBRUSH OnCtlColor(HDC dc, HBRUSH ofDialog);
    [[nodiscard]] HFONT Font() const;
    void NoteMove();
    void Fit();
    void ShowFocus(bool hasFocus);
    void PlaceFocus();
    [[nodiscard]] bool WillPaintFocus() const;
    void DrawFocus() const;

    ControlAccessible accessible_;
    PixelRect room_;                 // in the parent: what the dialog has given the window
    PixelRect fitted_;               // and what of it the text has taken
    PixelRect focus_;                // what shows the focus, in the dialog; empty: nothing does
    WNDPROC oldProcedure_ = nullptr; // of the window; a property of it, too, which is slow to read
    LONG_PTR addedStyle_ = 0;
    LONG_PTR oldUserData_ = 0;
    bool hasFocus_ = false;
    bool isTextChanging_ = false;
};

// A link with a fixed id, for a command of a dialog.
class ObCmdLinkCtrl : public ObHyperlinkCtrl {
public:
    using ObHyperlinkCtrl::ObHyperlinkCtrl;
};

} // namespace ObLibX
