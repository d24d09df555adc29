// The label that names a control for screen readers, and what its text is to them.
#pragma once

#include <windows.h>

#include "ObLib/Src/ObString.h"

namespace ObLibX {

// The whole text of a window, with its access key.
ObLib::ObString WindowText(HWND window);

// The text of a static window, without its access key.
ObLib::ObString LabelText(HWND label);

// The text of the static window before this one in Z-order, without its access key; empty when a
// control that takes the focus comes first. A hidden label counts, as to the system: it names a
// control beside which no text is to be seen. On the window's thread.
ObLib::ObString LabelBefore(HWND window);

} // namespace ObLibX
