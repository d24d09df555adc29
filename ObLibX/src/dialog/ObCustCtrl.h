// The base of all flat controls: an object on top of a stock window of a dialog.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>

#include "ObLib/Src/ObString.h"
#include "ObLibX/src/dialog/Geometry.h"
#include "ObLibX/src/dialog/ImageSet.h"
#include "ObLibX/src/dialog/PageSwitch.h"

namespace ObLibX {

// "The parent's background", and in `animatedColor` "no fade".
inline constexpr COLORREF kNoColor = 0xFFFFFFFF;

// Dresses a window that the dialog's template made: takes over its colours, its font and, in most
// classes, its painting. The object belongs to the dialog and dies with it, after its window. On
// the dialog's thread. What an override throws ends in the window procedure.
//
// One object dresses several windows where its dialog is opened several times, one after the other:
// OnCreated is called once, Attach at each opening, and `window` is null in between. What belongs
// to a window, such as that the mouse is on it, begins anew in Attach.
class ObCustomControl {
public:
    // `imageList` as ImageSet takes it. An empty `fontName`: the base font; size 0: the base size.
    ObCustomControl(std::int32_t id, const std::int32_t* imageList, const ObLib::ObString& fontName,
                    std::int32_t fontSize);
    ObCustomControl(const ObCustomControl&) = delete;
    ObCustomControl& operator=(const ObCustomControl&) = delete;

    virtual ~ObCustomControl();
    // The dialog has entered the object in its map.
    virtual void OnCreated() {}
    // Takes a window over, once for each window.
    virtual void Attach(HWND attached);
    // The brush for the window's background; null: the dialog's.
    virtual HBRUSH OnCtlColor(HDC dc, HWND control);
    virtual bool OnMeasureItem(MEASUREITEMSTRUCT*) { return false; }
    virtual bool OnDrawItem(DRAWITEMSTRUCT*) { return false; }
    virtual void OnLayoutChanged() {}
    virtual void OnUpdateUIState(WORD, WORD) {}
    virtual void OnSetCheck(bool) {}
    virtual void Refresh();
    // 0 stops the fade that calls this.
    virtual std::uint32_t SetAnimatedColor(COLORREF) { return 0; }
    virtual COLORREF GetRawTextColor() { return textColor; }
    virtual COLORREF GetTextColor();
    virtual COLORREF GetRawFillColor() { return fillColor; }
    virtual COLORREF GetFillColor();
    virtual COLORREF GetHoverColor() { return hoverColor; }
    virtual COLORREF GetPressedColor() { return pressedColor; }
    virtual COLORREF GetFrameColor() { return frameColor; }
    virtual COLORREF GetHotFrameColor() { return hotFrameColor; }
    // Chooses `images` by the window's state.
    virtual void UpdateImages() {}
    virtual std::int32_t GetImageWidth() { return 0; }
    virtual void OnMouseMove(int, int) {}
    virtual void OnLeftButtonDown(int, int) {}
    virtual void OnLeftButtonUp(int, int) {}
    virtual void OnMouseLeave() {}
    virtual void DrawImage(HDC dc, HBITMAP bitmap, int x, int y);
    // On `focusRectangle`, while the window has the focus.
    virtual void DrawFocus(HDC dc);
    virtual void ComputeFocusRectangle();

    // The font of this control; lives to the end of the process. Null when it can't be made.
    [[nodiscard]] HFONT GetControlFont() const;

    // For dialogs, after Attach: change, fit and repaint.
    void SetControlFont(const ObLib::ObString& name, std::int32_t size, std::int32_t weight,
                        std::int32_t style);
    void SetTextColor(COLORREF color);
    void SetFillColor(COLORREF color);

    // Gives a colour of this control, such as &ObCustomControl::fillColor, the value of an entry of
    // the palette: now, and at each TakePaletteColors until somebody sets another colour. More than
    // four colours, or an entry that the palette doesn't have, end the process.
    void UsePalette(COLORREF ObCustomControl::*color, std::uint32_t entry);
    // Called by the dialog when it opens, and when the system's colours change: high contrast may
    // have begun or ended.
    void TakePaletteColors();

    HWND window = nullptr;     // null again once the window has gone
    std::int32_t id;           // of the control in its dialog
    ImageSet images;           // the current ones
    std::int32_t hasFrame = 1; // 1: a frame is drawn in currentFrameColor
    COLORREF textColor = 0;
    COLORREF fillColor = kNoColor;
    COLORREF hoverColor;
    COLORREF animatedColor = kNoColor;
    COLORREF pressedColor = 0xFCE8D4;
    COLORREF frameColor = 0xC0C0C0;
    COLORREF hotFrameColor = 0xEAB47E;
    COLORREF currentFrameColor = 0xC0C0C0;
    ObLib::ObString fontName; // empty: the base font
    std::int32_t fontSize;    // points
    std::int32_t fontWeight = 400;
    std::int32_t fontStyle = 0;       // kFontItalic and the others
    std::int32_t imageBesideText = 0; // 1: the text is below the image, 0: beside it
    std::int32_t imageSide = 0;       // 0: left, 1: right, 2: centred
    bool useUIState = true;           // the window is asked whether it shows focus cues
    bool endEllipsis = false;         // the text is drawn with word ellipsis
    bool clipFocusToText = false;     // else the focus box follows the whole window, inset by 2
    bool isPressed = false;           // the mouse is down on it
    bool noHighContrastRecolor = false;
    ObLib::ObString tooltipText;      // the tooltip has a pointer to it
    ObLib::ObString itemData;         // from the description
    ObPropSheet* ownerPage = nullptr; // of the dialog; not owned
    PixelRect textRectangle;          // these are filled while painting
    PixelRect layoutRectangle;
    PixelRect focusRectangle;
    std::int32_t padding = 8; // at 96 dpi

protected:
    static constexpr std::int32_t kFocusBoxInset = 2; // at 96 dpi
    // ComputeFocusRectangle, with kFocusBoxInset in pixels.
    void PlaceFocusRectangle(std::int32_t inset);
    // After the font was changed on an attached control.
    virtual void OnFontChanged();

private:
    // A colour that comes from the palette.
    struct PaletteUse {
        COLORREF ObCustomControl::*color = nullptr; // null: the place is free
        std::uint32_t entry = 0;
        COLORREF taken = 0; // another one by now: somebody has set it
    };

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    void OnKeyUp(WPARAM key);
    void SettleFont();

    std::array<PaletteUse, 4> paletteUses_; // text, fill, hover and pressed at most
};

} // namespace ObLibX
