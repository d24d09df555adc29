// Takes rows of controls out of a dialog.
#pragma once

#include <windows.h>

namespace obcore {

// Hides the controls `ids`, a list that ends with 0, moves what is below them up, and makes the
// dialog `window` as much shorter. Each of them is alone in its row. On the dialog's thread, also
// before it is shown. Throws std::bad_alloc.
void CollapseRows(HWND window, const int* ids);

} // namespace obcore
