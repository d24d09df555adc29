// A password field in the flat look: an edit with an eye that shows and hides its text.
#pragma once

#include "ObLibX/src/controls/ControlAccessible.h"
#include "ObLibX/src/controls/ObCustEdit.h"
#include "ObLibX/src/dialog/SharedImage.h"

namespace ObLibX {

class OffscreenPaint;

// The eye is a button at the right end of the frame, which neither Tab nor arrow keys reach: Alt+F8
// does the same in the edit.
class ObFlatPassword : public ObFlatEdit, private AccessibleSource {
public:
    // As ObFlatEdit.
    explicit ObFlatPassword(std::int32_t id, const ObLib::ObString& cue = {});

    ~ObFlatPassword() override;
    void Attach(HWND attached) override;
    void OnLayoutChanged() override;
    void Refresh() override;
    void OnShow(bool isShown) override;
    // Of the eye: shows or hides the text. The edit has the focus again once the eye is painted.
    void OnLeftButtonDown(int x, int y) override;
    // Shows or hides the text; the edit's parent then has the focus, so that no caret is in it.
    void Toggle();

    HWND tooltipWindow = nullptr; // destroyed with the edit
    HWND eyeButton = nullptr;     // a child of the edit's parent; destroyed with the edit
    bool reveal = false;          // the text is shown
    bool focusAfterPaint = false; // the edit gets the focus when the eye has been painted

protected:
    bool HasEye() const override { return true; }
    PixelRect EyeArea() const override;
    void OnHandled(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    static LRESULT CALLBACK EyeProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                         UINT_PTR id, DWORD_PTR object);
    bool OnEyeMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    void OnKeyDown(WPARAM key, LPARAM flags);
    void MakeEye();
    void DestroyHelpers();
    void AddEyeTip();
    void PaintEye();
    void DrawEye(HDC dc);
    void DrawInMiddle(const OffscreenPaint& paint, const SharedImage& image);
    void RepaintEye();
    void ReportState() const;
    void FocusAtEnd();

    // AccessibleSource
    ObLib::ObString AccessibleName() override;
    ObLib::ObString AccessibleShortcut() override;
    LONG AccessibleRole() override;
    LONG AccessibleState() override;
    void DoAccessibleAction() override;

    ObLib::ObString tipText_; // the tooltip has a pointer to it
    SharedImagePtr eye_;      // painted last
    ControlAccessible accessible_;
};

} // namespace ObLibX
