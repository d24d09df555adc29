// Flat check boxes and radio buttons. The windows stay stock buttons, which keep the check state.
#pragma once

#include <windows.h>

#include "ObLibX/src/controls/ContrastGlyph.h"
#include "ObLibX/src/controls/ObCustBtn.h"

namespace ObLibX {

// What has a check state.
class ObFlatToggleBase : public ObFlatBtn {
public:
    // The image and the gap to the text, in pixels of the screen; 0 without an image.
    std::int32_t GetImageWidth() override;

protected:
    using ObFlatBtn::ObFlatBtn;
    std::int32_t SpareOf(std::int32_t) override { return Scaled(padding); }
    [[nodiscard]] CheckState Checked() const;
};

// The sets of one kind of toggle, as ImageSet takes them; null: it has none for that state.
struct ToggleImages {
    ImageSet on;
    ImageSet off;
    ImageSet onDisabled;
    ImageSet offDisabled;
    ImageSet third;
    ImageSet thirdDisabled;
};

// What shows its check state by an image before its text.
class ObFlatBmpToggleBase : public ObFlatToggleBase {
public:
    void OnSetCheck(bool isChecked) override;
    void UpdateImages() override;
    void DrawImage(HDC dc, HBITMAP bitmap, int x, int y) override;
    // Around the text; without one the window, `inset` pixels at 96 dpi inside.
    void ComputeFocusRectangle() override;

protected:
    // `sets` is valid to the end of the process. A set of which the program's resources don't have
    // the image for this screen ends the process.
    ObFlatBmpToggleBase(std::int32_t id, const ToggleImages& sets, std::int32_t focusInset);
    // In high contrast, in place of the image.
    virtual void DrawGlyph(HDC dc, const PixelRect& box, COLORREF color) = 0;

private:
    const ImageSet& SetFor(CheckState state, bool isEnabled) const;

    const ToggleImages& sets_;
    std::int32_t focusInset_;
};

class ObFlatCheckbox : public ObFlatBmpToggleBase {
public:
    explicit ObFlatCheckbox(std::int32_t id);
    HBRUSH OnCtlColor(HDC dc, HWND control) override;

protected:
    void DrawGlyph(HDC dc, const PixelRect& box, COLORREF color) override;
};

class ObFlatRadio : public ObFlatBmpToggleBase {
public:
    explicit ObFlatRadio(std::int32_t id);

protected:
    void DrawGlyph(HDC dc, const PixelRect& box, COLORREF color) override;
};

} // namespace ObLibX
