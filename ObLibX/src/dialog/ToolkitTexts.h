// The texts that the dialog toolkit takes from the string table of the language module.
#pragma once

#include <cstdint>

namespace ObLibX {

inline constexpr std::int32_t kTextEmptyDocument = 62003;
inline constexpr std::int32_t kTextSwitchOff = 62107;
inline constexpr std::int32_t kTextSwitchOn = 62108;
inline constexpr std::int32_t kTextEyeTip = 62264;  // tooltip of the eye of a password field
inline constexpr std::int32_t kTextEyeName = 62265; // its name for screen readers

// All of them; a test looks for each in the product's resources. Those of the XML reports are in
// xml/scan/DocumentReport.h.
inline constexpr std::int32_t kToolkitTexts[] = {kTextEmptyDocument, kTextSwitchOff, kTextSwitchOn,
                                                 kTextEyeTip, kTextEyeName};

} // namespace ObLibX
