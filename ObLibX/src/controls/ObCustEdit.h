// A text field in the flat look: an edit without a border of its own, and a window around it that
// paints one.
#pragma once

#include "ObLibX/src/controls/EditLayout.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// Properties of windows. By the first two a dialog knows the windows that a field has made from its
// own; the others are those of the edit.
inline constexpr wchar_t kEditFrameProperty[] = L"OB_EDIT_FRAME";       // 1
inline constexpr wchar_t kEditEyeProperty[] = L"OB_EDIT_IMGBTN";        // 1
inline constexpr wchar_t kEditProperty[] = L"PROP_EDIT_OBJECT";         // its ObFlatEdit
inline constexpr wchar_t kPasswordProperty[] = L"PROP_PASSWORD_OBJECT"; // its ObFlatPassword

// A spin control beside an edit.
class EditFollower {
public:
    // The frame was moved, or has another size.
    virtual void FollowEdit(HWND frameWindow, std::int32_t frameWidth) = 0;
    virtual void OnEditShown(bool isShown) = 0;
    // The edit's window goes first: its object is not to be used any more.
    virtual void OnEditGone() = 0;

protected:
    ~EditFollower() = default;
};

class ObFlatEdit : public ObCustomControl {
public:
    // `cue`: shown while the edit is empty, with the focus too.
    explicit ObFlatEdit(std::int32_t id, const ObLib::ObString& cue = {});

    ~ObFlatEdit() override;
    // Takes the border off, gives an edit of one line the height of its text, and makes the frame.
    // The process ends when no font can be made.
    void Attach(HWND attached) override;
    // Asked for in every state of the edit, and for the inside of its frame. Null in high contrast.
    HBRUSH OnCtlColor(HDC dc, HWND control) override;
    // The edit was moved or resized: what is around it follows.
    void OnLayoutChanged() override;
    void Refresh() override;
    // The edit is about to be shown or hidden, or was by SetWindowPos.
    virtual void OnShow(bool isShown);

    PixelRect frameRectangle; // these two in the coordinates of the parent
    PixelRect editRectangle;
    HWND frameWindow = nullptr; // a child of the edit's parent; destroyed with the edit
    ObLib::ObString cueText;
    bool hideFrame = false;              // before Attach
    std::int32_t frameWidth = 2;         // pixels at every scale; before Attach
    std::int32_t minimumHeight = 0;      // of the frame once the edit is moved, in pixels
    bool keepFrameWhenReadOnly = false;  // else a read-only edit looks like a label
    EditFollower* spinControl = nullptr; // not owned

protected:
    void OnFontChanged() override;
    // Room is left for an eye.
    virtual bool HasEye() const { return false; }
    [[nodiscard]] std::int32_t EyeWidth() const { return eyeWidth_; }
    // Where the eye is now, in the coordinates of the parent; empty when there is none to be seen.
    virtual PixelRect EyeArea() const { return {}; }
    // A message has been handled by the edit.
    virtual void OnHandled(UINT message, WPARAM wParam, LPARAM lParam);
    // Paints an area as the edit itself is painted.
    void FillAsEdit(HDC dc, const RECT& area) const;
    [[nodiscard]] bool IsShown() const; // by its own style, whether the dialog is visible or not
    // The same, but for a window that isn't to be redrawn, whose style is that of a hidden one.
    [[nodiscard]] bool WasShown() const { return wasShown_; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    static LRESULT CALLBACK FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR id, DWORD_PTR object);
    [[nodiscard]] EditMeasures Measures() const;
    [[nodiscard]] COLORREF RingColor() const;
    void OnPosChanged(const WINDOWPOS& pos);
    void Place();
    void MakeFrame();
    void PaintFrame();
    void DrawFrame(HDC dc);

    std::int32_t eyeWidth_ = 0; // pixels; 0 without an eye
    bool wasShown_ = false;     // what OnShow was called with last
};

} // namespace ObLibX
