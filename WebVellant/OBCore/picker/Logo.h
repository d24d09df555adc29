// The product's picture in the bottom strip of the shell's dialog.
#pragma once

#include <windows.h>

namespace obcore {

// A procedure for a hook of kind WH_CBT on the thread that shows the dialog, installed until it is
// closed. Each window that is created in the shell's view gets a child with the picture, which
// stays at the bottom left of the view as the view is resized. Every call is passed on.
LRESULT CALLBACK LogoHookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace obcore
