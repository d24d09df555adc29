// What the classes of buttons differ in: a table with a row for each.
#pragma once

#include <cstdint>
#include <optional>

#include "ObLibX/src/controls/ControlImages.h"

namespace ObLibX {

enum class ButtonClass { Plain, Blue, Settings, Browser, Split, Drop, Toggle, Switch };

// In place of a palette entry.
inline constexpr std::int32_t kOwnColor = -1; // what every control begins with
// kNoColor: as a fill the parent's background, as the colour of a press none, so that the fill
// stays.
inline constexpr std::int32_t kWithoutColor = -2;

struct ButtonLook {
    ButtonClass buttonClass;
    // Palette entries, or one of the above.
    std::int32_t fill;
    std::int32_t text;
    std::int32_t hover;
    std::int32_t pressed;
    std::uint32_t flags; // kLook...
    std::int32_t imageSide;
    std::int32_t padding; // at 96 dpi
    std::optional<ControlImage> image;
};

inline constexpr std::uint32_t kLookRing = 1;        // accentRing
inline constexpr std::uint32_t kLookSizeToImage = 2; // sizeToImage
inline constexpr std::uint32_t kLookImageOnly = 4;   // imageOnly
inline constexpr std::uint32_t kLookNoGap = 8;       // no imageGap
inline constexpr std::uint32_t kLookNoFrame = 16;    // no frame
inline constexpr std::uint32_t kLookTextFocus = 32;  // clipFocusToText
inline constexpr std::uint32_t kLookLeft = 64;       // left when the style names no place

// The row of a class; constant.
const ButtonLook& LookOf(ButtonClass buttonClass);

} // namespace ObLibX
