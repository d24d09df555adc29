// The button in the shell's dialog that picks from the cloud: how it gets into the dialog, and what
// a click does.
#pragma once

#include <windows.h>

#include "OBCore/cloud/CloudButtonHook.h"

namespace obcore {

// The record for the next dialog of the calling thread, or null for none. A hook procedure has no
// context of its own, so the record is process-wide; one dialog at a time is the design. The record
// must outlive the dialog.
void SetCloudButtonRecord(CloudButtonHook* record) noexcept;

// A procedure for a hook of kind WH_CBT on the thread that shows the dialog. The first standard
// dialog that the thread creates is taken for the shell's: it is subclassed with the record, which
// gives it the button, and the record's hook is removed. Every call is passed on.
LRESULT CALLBACK CloudButtonHookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace obcore
