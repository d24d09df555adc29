// The about box: the versions of the library, and help.
#pragma once

#include <windows.h>

#include <string>

#include "OBCore/options/OBOptions.h"

namespace obcore {

// Shows template 107 and waits. 1 after OK, 2 after a cancel, -1 when the dialog can't be made. The
// archive service and the texts are bound.
INT_PTR ShowAboutDialog(HWND owner, const OBOptions& options);

// The box's text from the text of its template, in the form of a system message: %1 and %2 are the
// file and the product version of this library, %3 is the text 1032; any other place is empty. The
// template itself when it isn't a message. Throws std::bad_alloc.
std::wstring AboutText(const std::wstring& messageTemplate);

} // namespace obcore
