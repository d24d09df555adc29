// The base of every dialog of the product.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/DialogScrolling.h"
#include "ObLibX/src/dialog/GraphicsToken.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

using ControlMap = std::map<std::int32_t, std::unique_ptr<ObCustomControl>>; // by control id

// A window object: owns one dialog window, turns its messages into virtual calls, and has a control
// object for each window that is dressed. Its template comes from the language module.
//
// Modal dialogs are objects on the stack, which are asked for their values after DoModal. Opened
// inside an activation context with version 6 of the common controls. One thread, which runs all
// dialogs of the process. Mistakes of the program end the process. What a handler throws ends in
// the dialog procedure, and the message counts as not handled; a modal dialog whose OnInitDialog
// throws ends as a cancel.
class ObXDlg : public ScrollTarget {
public:
    // `parent`: the owner, unless it is hidden. `helpId` is stored for the product's help.
    ObXDlg(std::int32_t templateId, HWND parent, std::uint32_t helpId, bool centerOnOpen);
    ObXDlg(const ObXDlg&) = delete;
    ObXDlg& operator=(const ObXDlg&) = delete;

    // ---- What a dialog overrides. A handler that returns false leaves the message to the system.
    virtual ~ObXDlg();
    // Runs the dialog and returns what it was ended with.
    virtual std::int32_t DoModal();
    // Makes a modeless dialog; its message loop is the caller's.
    virtual void Create(HWND parent);
    // Before the window is made; may still change the fields.
    virtual void OnPreCreate() {}
    virtual bool OnInitDialog();
    virtual bool OnOK();
    virtual bool OnHelp();
    virtual bool OnCancel();
    virtual bool OnContextMenu(WPARAM, LPARAM) { return true; }
    // True: `result` is what the sender of the message gets.
    virtual bool OnNotify(int id, NMHDR* header, LRESULT& result);
    virtual bool OnClose() { return false; }
    virtual bool OnSize(WPARAM, int, int) { return false; }
    virtual bool OnGetMinMaxInfo(MINMAXINFO*) { return false; }
    virtual bool OnMeasureItem(int id, MEASUREITEMSTRUCT* data);
    virtual bool OnDrawItem(int id, DRAWITEMSTRUCT* data);
    virtual bool OnSizing(WPARAM, RECT*) { return false; }
    virtual void OnMove(int, int) {}
    virtual bool OnMoving(WPARAM, RECT*) { return false; }
    virtual bool OnPaint() { return false; }
    virtual bool OnCommandId(int, int, HWND) { return false; }
    virtual bool OnCommand(WPARAM wParam, LPARAM lParam);
    virtual bool OnTimer(UINT_PTR) { return false; }
    // The window is being destroyed; `window` is null already where OnOK or OnCancel ended the
    // dialog. An override calls this one.
    virtual bool OnDestroy();
    // A scroll area of this target has another position.
    void OnScroll(std::int64_t, std::intptr_t) override {}
    virtual bool OnSysCommand(WPARAM, LPARAM) { return false; }
    virtual bool OnColorChange();
    virtual HBRUSH OnCtlColorDlg();
    virtual HBRUSH OnCtlColorStatic(HWND control, HDC dc);
    virtual HBRUSH OnCtlColorBtn(HWND control, HDC dc);
    virtual HBRUSH OnCtlColorEdit(HWND control, HDC dc);
    virtual bool OnUpdateUIState(WORD action, WORD state);
    // The colour of a list view's cell; `flags`: 1 selected, 2 hot, 4 focused, 8 high contrast.
    virtual COLORREF GetListItemColor(int, int, int, std::uint32_t) { return kNoColor; }
    virtual LRESULT OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // The object of a dialog's window; null for any other window. On the window's thread.
    static ObXDlg* FromWindow(HWND window);

    // ---- What a dialog calls
    // Null when no object has this id.
    [[nodiscard]] ObCustomControl* GetControl(std::int32_t id) const;
    // The child window of this id. `mustExist`: ends the process when there is none. So does a
    // dialog that isn't open.
    [[nodiscard]] HWND GetItem(std::int32_t id, bool mustExist) const;
    // Takes an object over. One id twice ends the process.
    void AddControl(std::unique_ptr<ObCustomControl> control);
    // `text` is valid as long as the dialog's window. A label that has a tooltip also notifies of
    // clicks (STN_CLICKED): without that the mouse doesn't see it.
    void AddTooltip(HWND tool, const wchar_t* text);
    DialogScrolling& Scrolling() { return scrolling_; }
    [[nodiscard]] const ControlMap& Controls() const { return controls_; }

    HWND window = nullptr; // null while closed, and once OnOK or OnCancel has ended the dialog
    HWND parentWindow;
    std::int32_t templateId;
    bool isModeless = false;
    bool keepHiddenParent = false; // the parent is the owner even if it isn't visible
    std::uint32_t helpId;
    bool centerOnOpen;
    bool inInitDialog = false;
    bool isFlat = false; // its controls are dressed
    COLORREF backgroundColor = 0xFFFFFF;

private:
    GraphicsToken graphicsToken_; // ends after what may use GDI+

public:
    ObLib::UniqueResource<ObLib::GdiObjectPolicy<HGDIOBJ>> extraObject; // of a dialog's own
    // The sheet that Ctrl with Page Up and Page Down turns the pages of; not owned. Needed only by
    // a dialog that is neither an ObPropSheet nor an ObPropPage itself.
    ObPropSheet* ownerSheet = nullptr;

private:
    // Of all dialogs; `lParam` of WM_INITDIALOG is the object. In ObXDlgProcedure.cpp.
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    bool EndWith(int result);
    void DressControls();
    void PrepareControls();
    bool HasObjectFor(HWND child);
    void TakeHeading(std::unique_ptr<ObCustomControl> heading);
    ObPropSheet* EnclosingSheet();
    ObCustomControl* ControlOf(HWND control) const;
    HBRUSH BrushOf(HWND control, HDC dc) const;
    void DestroyTooltips();

    DialogScrolling scrolling_;
    ControlMap controls_;
    HWND tooltipWindow_ = nullptr; // owned by the dialog's window
};

} // namespace ObLibX
