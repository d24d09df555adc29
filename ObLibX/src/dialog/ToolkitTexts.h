// The texts that the dialog toolkit takes from the string table of the language module.
#pragma once

#include <cstdint>

namespace ObLibX {

inline constexpr std::int32_t kTextEmptyDocument = 62003;
inline constexpr std::int32_t kTextSwitchOff = 62107;
inline constexpr std::int32_t kTextSwitchOn = 62108;
// Menu of a hosted scroll bar.
inline constexpr std::int32_t kTextScrollHere = 62119;
inline constexpr std::int32_t kTextTop = 62120;
inline constexpr std::int32_t kTextBottom = 62121;
inline constexpr std::int32_t kTextLeftEdge = 62122;
inline constexpr std::int32_t kTextRightEdge = 62123;
inline constexpr std::int32_t kTextPageUp = 62124;
inline constexpr std::int32_t kTextPageDown = 62125;
inline constexpr std::int32_t kTextPageLeft = 62126;
inline constexpr std::int32_t kTextPageRight = 62127;
inline constexpr std::int32_t kTextScrollUp = 62128;
inline constexpr std::int32_t kTextScrollDown = 62129;
inline constexpr std::int32_t kTextScrollLeft = 62130;
inline constexpr std::int32_t kTextScrollRight = 62131;
inline constexpr std::int32_t kTextShowScrollbars = 62132;
inline constexpr std::int32_t kTextHideScrollbars = 62133;
inline constexpr std::int32_t kTextEyeTip = 62264;  // tooltip of the eye of a password field
inline constexpr std::int32_t kTextEyeName = 62265; // its name for screen readers

// All of them; a test looks for each in the product's resources. Those of the XML reports are in
// xml/scan/DocumentReport.h.
inline constexpr std::int32_t kToolkitTexts[] = {
    kTextEmptyDocument, kTextSwitchOff,      kTextSwitchOn,       kTextScrollHere, kTextTop,
    kTextBottom,        kTextLeftEdge,       kTextRightEdge,      kTextPageUp,     kTextPageDown,
    kTextPageLeft,      kTextPageRight,      kTextScrollUp,       kTextScrollDown, kTextScrollLeft,
    kTextScrollRight,   kTextShowScrollbars, kTextHideScrollbars, kTextEyeTip,     kTextEyeName};

} // namespace ObLibX
