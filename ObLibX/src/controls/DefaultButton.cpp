#include "ObLibX/src/controls/DefaultButton.h"

#include <algorithm>

#include "ObLibX/src/dialog/FlatDressing.h"
#include "ObLibX/src/dialog/Palette.h"

namespace ObLibX {
namespace {

constexpr LONG_PTR kButtonKindBits = 0xF;

// Of a button's style; the push buttons are the first two.
LONG_PTR KindOf(HWND button) { return GetWindowLongPtrW(button, GWL_STYLE) & kButtonKindBits; }

bool IsPushButton(const ObCustomControl* control) {
    return IsOfClass(control->window, L"Button") && KindOf(control->window) <= BS_DEFPUSHBUTTON;
}

bool IsDefault(const ObCustomControl* control) {
    return IsPushButton(control) && KindOf(control->window) == BS_DEFPUSHBUTTON;
}

bool HasAccent(ObCustomControl* control) {
    return IsPushButton(control) && control->GetRawFillColor() == GetPaletteColor(kPaletteAccent);
}

// The same colour for hover and press, as white text isn't readable on the paler ones.
void GiveAccent(ObCustomControl& control) {
    control.UsePalette(&ObCustomControl::textColor, kPaletteWhite);
    for (const auto color : {&ObCustomControl::fillColor, &ObCustomControl::hoverColor,
                             &ObCustomControl::pressedColor}) {
        control.UsePalette(color, kPaletteAccent);
    }
}

void MakeDefault(HWND dialog, const ObCustomControl& control) {
    const LONG_PTR style = GetWindowLongPtrW(control.window, GWL_STYLE);
    SetWindowLongPtrW(control.window, GWL_STYLE, (style & ~kButtonKindBits) | BS_DEFPUSHBUTTON);
    SendMessageW(dialog, DM_SETDEFID, static_cast<WPARAM>(control.id), 0); // for Enter
}

} // namespace

void SettleDefaultButton(HWND dialog, const std::vector<ObCustomControl*>& controls) {
    const auto defaultButton = std::ranges::find_if(controls, &IsDefault);
    const auto accent = std::ranges::find_if(controls, &HasAccent);
    const bool hasDefault = defaultButton != controls.end();
    const bool hasAccent = accent != controls.end();
    if (hasDefault && !hasAccent) GiveAccent(**defaultButton);
    if (!hasDefault && hasAccent) MakeDefault(dialog, **accent);
}

} // namespace ObLibX
