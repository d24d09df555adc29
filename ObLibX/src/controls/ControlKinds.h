// Which flat control dresses a window of a dialog: by its class, its style and the words of the
// description.
#pragma once

#include <cstdint>
#include <string>

#include "ObLibX/src/dialog/DialogDescription.h"

namespace ObLibX {

enum class ControlKind {
    Stock, // the window stays as it is
    Edit,
    Password,
    StaticText,
    HorizontalScrollbar,
    VerticalScrollbar,
    HorizontalSlider,
    VerticalSlider,
    ProgressBar,
    ListView,
    Button,
    BlueButton,
    SettingsButton,
    BrowserButton,
    Checkbox,
    ToggleButton,
    Radio,
    SplitButton,
    DropButton,
    ComboBoxSimple,
    ComboBoxDropdown,
    ComboBoxDropdownList,
    SpinControl,
    DatePicker,
};

struct WindowTraits {
    std::wstring className; // in any case
    std::uint32_t style = 0;
    bool hasNoSplit = false; // a split button whose split info has the no-split style
};

// `description` null: the control has none. A push button with a word that isn't known ends the
// process. Throws std::bad_alloc.
ControlKind KindOfControl(const WindowTraits& window, const ControlDescription* description);

} // namespace ObLibX
