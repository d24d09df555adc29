// Flat push buttons. The windows stay stock buttons: the keyboard, the check state and the messages
// to the dialog are the system's; an object paints its window and follows the mouse.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <cstdint>

#include "ObLib/Src/ObString.h"
#include "ObLibX/src/controls/ButtonLayout.h"
#include "ObLibX/src/controls/ButtonLooks.h"
#include "ObLibX/src/controls/ColorFade.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"
#include "ObLibX/src/dialog/SharedImage.h"

namespace ObLibX {

// How a button looks at the moment: the row of its images, too.
enum class ButtonState : std::int32_t { Idle = 0, Hot = 1, Pressed = 2 };

class ObFlatBtn : public ObCustomControl {
public:
    explicit ObFlatBtn(std::int32_t id);
    ~ObFlatBtn() override;

    void Attach(HWND attached) override;
    std::uint32_t SetAnimatedColor(COLORREF color) override;
    COLORREF GetTextColor() override;
    COLORREF GetFillColor() override;
    void OnMouseMove(int x, int y) override;
    void OnLeftButtonDown(int x, int y) override;
    void OnLeftButtonUp(int x, int y) override;
    void OnMouseLeave() override;
    void ComputeFocusRectangle() override;

    // WM_GETDLGCODE; 0: the stock button's answer.
    virtual LRESULT OnGetDlgCode(WPARAM) { return 0; }
    virtual void OnSetFocus() {}
    virtual void OnKillFocus() {}
    // WM_PAINT and WM_PRINTCLIENT, and whenever the stock button has painted by itself.
    virtual void Paint(HDC dc);

    // Paints at once, where the window is seen.
    void Repaint();
    // Ends a hover and a press: the window gets no mouse any more.
    void ForgetMouse();
    // Takes the ring off the parent, before the window leaves its place.
    void HideRing();

    bool sizeToImage = false;   // Attach makes the window as large as the image needs
    bool imageGap = true;       // a padding is between image and text
    bool isDown = false;        // the left button is down on it
    bool isHot = false;         // the mouse is inside
    bool noMouseStates = false; // no hover and no press
    bool accentRing = false;    // a ring is drawn on the parent around the button
    bool frameFocus = false;    // the focus is a frame in focusFrameColor
    HorizontalPlace defaultHorizontal = HorizontalPlace::Centre; // when the style names none
    VerticalPlace defaultVertical = VerticalPlace::Centre;
    PixelRect imageRectangle; // filled while painting
    COLORREF focusFrameColor = 0;
    bool imageOnly = false; // no text is drawn
    ColorFade fade;

protected:
    ObFlatBtn(std::int32_t id, ButtonClass buttonClass);

    // Paints all but the ring into a bitmap, which it then shows on `dc`.
    void PaintButton(ButtonState state, HDC dc);
    // How much wider than its image the place of the image is beside a text.
    virtual std::int32_t SpareOf(std::int32_t /*imageWidth*/) { return 0; }
    // On top of text and image, before the focus. `imageLeft`: where the image begins.
    virtual void PaintOver(HDC /*dc*/, std::int32_t /*imageLeft*/) {}
    [[nodiscard]] bool IsAccent() const;
    // A length at 96 dpi in pixels of the screen that is painted on: in place of Scale, as it asks
    // the system for nothing, and only while Paint of this class runs.
    [[nodiscard]] std::int32_t Scaled(std::int32_t length) const {
        return MulDiv(length, paintDpi_, kUnscaledDpi);
    }
    static constexpr std::int32_t kUnscaledDpi = 96;
    [[nodiscard]] bool IsEnabled() const { return IsWindowEnabled(window) != FALSE; }
    // After text and image: the focus, unless it is among what the window hides (HiddenCues).
    void PaintFocus(HDC dc, UINT hiddenCues);
    // WM_PAINT, WM_PRINTCLIENT and WM_ERASEBKGND: true when it was one of them, whose result is 1.
    // What painting throws ends here.
    static bool PaintedByMessage(ObFlatBtn& button, UINT message, WPARAM wParam);
    // Its own procedure instead of the one of all buttons; for Attach.
    virtual SUBCLASSPROC Procedure() const { return &ObFlatBtn::ButtonProcedure; }

    SharedImagePtr image_; // painted last; kept, as most likely the next one is the same

private:
    // In ObCustBtnProcedure.cpp.
    static LRESULT CALLBACK ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR object);

    struct Face; // what one painting needs to know
    [[nodiscard]] ButtonState State() const;
    void PaintState(ButtonState state);
    void PaintFace(ButtonState state, HDC dc, const PixelRect& area);
    [[nodiscard]] Face FaceOf(ButtonState state);
    [[nodiscard]] SharedImagePtr ImageOf(ButtonState state) const;
    void PaintText(const Face& face, HDC dc);
    std::int32_t PaintImage(const Face& face, HDC dc);
    void PaintRing(ButtonState state);
    [[nodiscard]] bool HasFocus() const;
    void SizeToImage();

    // Asked once for each painting, of the device context, which knows it.
    std::int32_t paintDpi_ = kUnscaledDpi;
};

class ObFlatBlueBtn : public ObFlatBtn {
public:
    explicit ObFlatBlueBtn(std::int32_t id);
};

// A picture that has a frame only while the mouse is on it, and the colour of disabled text while
// it is disabled.
class ObFlatSettingsBtn : public ObFlatBtn {
public:
    explicit ObFlatSettingsBtn(std::int32_t id);
    void Attach(HWND attached) override;
    void Refresh() override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void DrawImage(HDC dc, HBITMAP bitmap, int x, int y) override;
};

class ObFlatBrowserBtn : public ObFlatBtn {
public:
    explicit ObFlatBrowserBtn(std::int32_t id);
};

// A button with a second part that drops a menu down.
class ObFlatSplitBtn : public ObFlatBtn {
public:
    explicit ObFlatSplitBtn(std::int32_t id);
    void UpdateImages() override;

protected:
    ObFlatSplitBtn(std::int32_t id, ButtonClass buttonClass);
    void PaintOver(HDC dc, std::int32_t imageLeft) override;
};

// The whole button drops the menu down: its window gets the split style without a split.
class ObFlatDropBtn : public ObFlatSplitBtn {
public:
    explicit ObFlatDropBtn(std::int32_t id);
    void Attach(HWND attached) override;
};

} // namespace ObLibX
