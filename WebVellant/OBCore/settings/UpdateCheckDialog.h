// The settings of the check for updates.
#pragma once

#include <windows.h>

#include "OBCore/options/OBOptions.h"

namespace obcore {

// Shows template 106 and waits. 1 after OK, which writes into `options` unless policy forbids
// checks; 2 after a cancel; -1 when the dialog can't be made. Nothing is saved: the values live for
// the run. The archive service and the texts are bound.
INT_PTR ShowUpdateCheckDialog(HWND owner, OBOptions& options);

} // namespace obcore
