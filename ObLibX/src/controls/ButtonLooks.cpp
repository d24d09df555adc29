#include "ObLibX/src/controls/ButtonLooks.h"

#include <algorithm>

#include "ObLibX/src/dialog/Palette.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kFill = kPaletteButtonFill;
constexpr std::int32_t kAccent = kPaletteAccent;
constexpr std::int32_t kWhite = kPaletteWhite;
constexpr std::uint32_t kPicture = kLookImageOnly | kLookNoGap;

// class, fill, text, hover, pressed, flags, imageSide, padding, image
constexpr ButtonLook kLooks[] = {
    {ButtonClass::Plain, kFill, kOwnColor, kOwnColor, kOwnColor, 0, 0, 8, {}},
    {ButtonClass::Blue, kAccent, kWhite, kAccent, kAccent, kLookRing, 0, 8, {}},
    {ButtonClass::Settings, kWithoutColor, kOwnColor, kOwnColor, kOwnColor,
     kPicture | kLookSizeToImage | kLookNoFrame, 2, 8, ControlImage::Settings},
    {ButtonClass::Browser, kFill, kOwnColor, kOwnColor, kOwnColor, kPicture, 2, 8,
     ControlImage::Browser},
    {ButtonClass::Split, kFill, kOwnColor, kOwnColor, kOwnColor, 0, 2, 8, ControlImage::DownArrow},
    {ButtonClass::Drop, kFill, kOwnColor, kOwnColor, kOwnColor, 0, 2, 8, ControlImage::DownArrow},
    {ButtonClass::Toggle,
     kWithoutColor,
     kOwnColor,
     kOwnColor,
     kWithoutColor,
     kLookNoGap | kLookNoFrame | kLookTextFocus | kLookLeft,
     0,
     2,
     {}},
    {ButtonClass::Switch,
     kWithoutColor,
     kOwnColor,
     kOwnColor,
     kWithoutColor,
     kLookNoFrame | kLookLeft,
     0,
     0,
     {}},
};

} // namespace

const ButtonLook& LookOf(ButtonClass buttonClass) {
    return *std::ranges::find(kLooks, buttonClass, &ButtonLook::buttonClass);
}

} // namespace ObLibX
