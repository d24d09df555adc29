// The colours that a fade goes through.
#pragma once

#include <cstdint>

namespace ObLibX {

inline constexpr std::uint32_t kFadeSteps = 10;
inline constexpr std::uint32_t kFadeStepMilliseconds = 10;

// The colour (0x00BBGGRR) after `step` of kFadeSteps: each channel is on its own straight way.
std::uint32_t FadedColor(std::uint32_t from, std::uint32_t to, std::uint32_t step);

} // namespace ObLibX
