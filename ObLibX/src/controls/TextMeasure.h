// The size of a text in a font.
#pragma once

#include <windows.h>

#include "ObLib/Src/ObString.h"
#include "ObLibX/src/controls/TextFit.h"

namespace ObLibX {

// As DrawText measures it with `flags`, in a line of `width` pixels where it is wrapped. A font
// that is null ends the process. Any thread.
TextSize MeasureTextIn(HFONT font, const ObLib::ObString& text, std::int32_t width, UINT flags);

} // namespace ObLibX
