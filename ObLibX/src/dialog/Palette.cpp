#include "ObLibX/src/dialog/Palette.h"

#include <iterator>

#include "ObLib/Src/ObFatal.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\Palette.cpp";

constexpr int kSame = -1;

struct PaletteEntry {
    COLORREF normal;
    int highContrast; // index of the system's colour, or kSame
};

constexpr PaletteEntry kPalette[] = {
    {0xFFFFFF, kSame}, // white
    {0xFCFCFC, kSame},
    {0xF6F6F6, kSame},                       // button fill
    {kAccentColor, COLOR_HOTLIGHT},          // accent
    {0xFBF3E5, COLOR_GRADIENTACTIVECAPTION}, // hover fill
    {0xE8C277, COLOR_ACTIVECAPTION},
    {0xFDE8D2, COLOR_GRADIENTACTIVECAPTION},
    {0xE8A765, COLOR_ACTIVECAPTION},
    {0x797979, kSame},
    {0xA8A8A8, kSame},
    {0xCCCCCC, kSame},
    {0xDFDFDF, kSame}, // frames
    {0x212121, COLOR_ACTIVECAPTION},
    {0x0000FA, kSame},
    {0x000000, COLOR_BTNTEXT}, // headings
};

} // namespace

COLORREF GetPaletteColor(std::uint32_t index) {
    ObAssert(index < std::size(kPalette));
    const PaletteEntry& entry = kPalette[index];
    const bool isSystems = entry.highContrast != kSame && IsHighContrast();
    return isSystems ? GetSysColor(entry.highContrast) : entry.normal;
}

} // namespace ObLibX
