// The colours that all flat controls share.
#pragma once

#include <windows.h>

#include <cstdint>

namespace ObLibX {

// Entries of the palette that code names.
inline constexpr std::uint32_t kPaletteWhite = 0;
inline constexpr std::uint32_t kPaletteButtonFill = 2;
inline constexpr std::uint32_t kPaletteAccent = 3;
inline constexpr std::uint32_t kPaletteHover = 4;
inline constexpr std::uint32_t kPaletteGray = 9;
inline constexpr std::uint32_t kPaletteFrame = 11;
inline constexpr std::uint32_t kPaletteHeading = 14;

// The accent colour without high contrast.
inline constexpr COLORREF kAccentColor = 0xC0761B;

// An entry, 0 to 14; in high contrast some are those of the system. Any other index ends the
// process. Any thread.
COLORREF GetPaletteColor(std::uint32_t index);

} // namespace ObLibX
