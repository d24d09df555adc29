// The pictures of the flat controls: sets of bitmaps in the program's resources.
#pragma once

#include <cstdint>

namespace ObLibX {

enum class ControlImage {
    CheckOn,
    CheckOnDisabled,
    CheckOffDisabled,
    CheckOff,
    CheckThird,
    CheckThirdDisabled,
    RadioOn,
    RadioOnDisabled,
    RadioOffDisabled,
    RadioOff,
    Settings,
    DownArrow, // of drop and split buttons, combos, spins and scroll bars
    DownArrowDisabled,
    LeftArrow,
    LeftArrowDisabled,
    RightArrow,
    RightArrowDisabled,
    UpArrow,
    UpArrowDisabled,
    Browser,
    EyeHidden,  // the password's text is hidden
    EyeVisible, // the password's text is visible
};

// The set as ImageSet takes it: one row of eight ids, and the end of the list. Constant.
const std::int32_t* ImageList(ControlImage image);

} // namespace ObLibX
