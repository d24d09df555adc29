// The largest picture of a set that fits a place.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ControlImages.h"

namespace ObLibX {

// The largest of the eight scales whose picture is at most `most` pixels high and wide; 0 where
// none is. On the thread of the dialogs.
std::int32_t LargestFittingScale(ControlImage image, std::int32_t most);

// The picture of a set at a scale; empty when the program doesn't have it.
ObLib::UniqueBitmap ImageOfScale(ControlImage image, std::int32_t scale);

} // namespace ObLibX
