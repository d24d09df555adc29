// A static text in the flat look.
#pragma once

#include "ObLibX/src/controls/CachedBrush.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// On white. A text that doesn't fit its window gets a smaller font, or the window grows
// (TextFit.h).
class ObFlatStaticText : public ObCustomControl {
public:
    // `name` empty: the base font; `size` 0: the base size.
    ObFlatStaticText(std::int32_t id, const ObLib::ObString& name, std::int32_t size,
                     std::int32_t weight, std::int32_t style, COLORREF color);

    ~ObFlatStaticText() override;
    void Attach(HWND attached) override;
    HBRUSH OnCtlColor(HDC dc, HWND control) override;
    // In high contrast that of windows: a dark scheme's text on white can't be meant.
    COLORREF GetRawFillColor() override;

    // Makes `newText` fit, or, for null, the window's own text; `fontSize` keeps what it is reduced
    // to, as long as the window is there: the next one has its own room. The process ends when no
    // font can be made.
    void FitText(const wchar_t* newText);

protected:
    void OnFontChanged() override;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    void SetFont();
    void OnTextSet();

    std::int32_t wantedSize_ = 0; // points, before it was made to fit
    CachedBrush brush_;
};

} // namespace ObLibX
