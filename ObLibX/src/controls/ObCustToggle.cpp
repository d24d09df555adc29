#include "ObLibX/src/controls/ObCustToggle.h"

#include <algorithm>

#include "ObLib/Src/ObFatal.h"
#include "ObLibX/src/controls/CachedBrush.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObCustToggle.cpp";

constexpr COLORREF kColorBits = 0xFFFFFF;
constexpr std::int32_t kRadioFocusInset = 2; // at 96 dpi

ImageSet SetOf(ControlImage image) { return ImageSet(ImageList(image)); }

// One for all check boxes.
const ToggleImages& CheckboxImages() {
    static const ToggleImages images{
        SetOf(ControlImage::CheckOn),         SetOf(ControlImage::CheckOff),
        SetOf(ControlImage::CheckOnDisabled), SetOf(ControlImage::CheckOffDisabled),
        SetOf(ControlImage::CheckThird),      SetOf(ControlImage::CheckThirdDisabled)};
    return images;
}

const ToggleImages& RadioImages() {
    static const ToggleImages images{SetOf(ControlImage::RadioOn),
                                     SetOf(ControlImage::RadioOff),
                                     SetOf(ControlImage::RadioOnDisabled),
                                     SetOf(ControlImage::RadioOffDisabled),
                                     ImageSet(),
                                     ImageSet()};
    return images;
}

// A set without pictures is one that the kind of toggle doesn't have.
bool IsThere(const ImageSet& set, std::int32_t dpi) {
    return set.rows == 0 || HasImage(GetImageId(set, 0, dpi));
}

bool AreThere(const ToggleImages& sets, std::int32_t dpi) {
    const ImageSet* const all[] = {&sets.on,          &sets.off,   &sets.onDisabled,
                                   &sets.offDisabled, &sets.third, &sets.thirdDisabled};
    return std::ranges::all_of(all, [&](const ImageSet* set) { return IsThere(*set, dpi); });
}

COLORREF ContrastColor(bool isEnabled) {
    return isEnabled ? ~GetSysColor(COLOR_WINDOW) & kColorBits : GetPaletteColor(kPaletteGray);
}

} // namespace

std::int32_t ObFlatToggleBase::GetImageWidth() {
    const std::int32_t image = GetImageId(images, 0, GetDpi());
    const SharedImagePtr shown = image != 0 ? LoadSharedImage(image) : nullptr;
    const LONG width = shown ? shown->Size().cx : 0;
    return width != 0 ? width + Scale(padding) : 0;
}

CheckState ObFlatToggleBase::Checked() const {
    return static_cast<CheckState>(SendMessageW(window, BM_GETCHECK, 0, 0));
}

ObFlatBmpToggleBase::ObFlatBmpToggleBase(std::int32_t toggleId, const ToggleImages& sets,
                                         std::int32_t focusInset)
    : ObFlatToggleBase(toggleId, ButtonClass::Toggle), sets_(sets), focusInset_(focusInset) {
    images = sets_.on;
    const std::int32_t dpi = GetDpi();
    ObAssert(AreThere(sets_, dpi));
    image_ = LoadSharedImage(GetImageId(images, 0, dpi));
    ObAssert(image_ != nullptr);
}

// Sets that a kind of toggle doesn't have are those of its cleared state.
const ImageSet& ObFlatBmpToggleBase::SetFor(CheckState state, bool isEnabled) const {
    if (state == CheckState::On) return isEnabled ? sets_.on : sets_.onDisabled;
    if (state == CheckState::Third && sets_.third.rows != 0) {
        return isEnabled ? sets_.third : sets_.thirdDisabled;
    }
    return isEnabled ? sets_.off : sets_.offDisabled;
}

void ObFlatBmpToggleBase::UpdateImages() { images = SetFor(Checked(), IsEnabled()); }

void ObFlatBmpToggleBase::OnSetCheck(bool) { Refresh(); }

void ObFlatBmpToggleBase::DrawImage(HDC dc, HBITMAP bitmap, int x, int y) {
    if (!IsHighContrast()) {
        ObFlatToggleBase::DrawImage(dc, bitmap, x, y);
        return;
    }
    const SIZE size = ImageSize(bitmap);
    DrawGlyph(dc, {x, y, x + size.cx, y + size.cy}, ContrastColor(IsEnabled()));
}

void ObFlatBmpToggleBase::ComputeFocusRectangle() {
    ObFlatToggleBase::ComputeFocusRectangle();
    if (textRectangle.IsEmpty()) {
        focusRectangle = Inset(ClientArea(window), Scaled(focusInset_));
    }
}

ObFlatCheckbox::ObFlatCheckbox(std::int32_t checkId)
    : ObFlatBmpToggleBase(checkId, CheckboxImages(), 0) {}

HBRUSH ObFlatCheckbox::OnCtlColor(HDC dc, HWND) {
    static CachedBrush brush;
    if (IsHighContrast()) return nullptr;
    SetBkMode(dc, TRANSPARENT);
    return brush.Get(GetFillColor());
}

void ObFlatCheckbox::DrawGlyph(HDC dc, const PixelRect& box, COLORREF color) {
    DrawContrastCheck(dc, box, Checked(), color);
}

ObFlatRadio::ObFlatRadio(std::int32_t radioId)
    : ObFlatBmpToggleBase(radioId, RadioImages(), kRadioFocusInset) {}

void ObFlatRadio::DrawGlyph(HDC dc, const PixelRect& box, COLORREF color) {
    DrawContrastRadio(dc, box, Checked() == CheckState::On, {color, GetFillColor()});
}

} // namespace ObLibX
