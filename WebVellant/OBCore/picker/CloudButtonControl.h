// The cloud button as a control of the shell's dialog: how it is made, and where it is.
#pragma once

#include <windows.h>

#include <cstdint>

#include "OBCore/cloud/CloudButtonHook.h"

namespace obcore {

inline constexpr WORD kCloudButtonId = 3011;

// Makes the button in `dialog` and stores the windows in the record. A dialog without an OK button
// or without a file name box raises an assertion, after which the call goes on without that window.
// The button is disabled when no provider serves the open picker.
void AddCloudButton(CloudButtonHook& record, HWND dialog);

// Moves the button to the left edge of the file name box, on the line and with the height of the OK
// button, and right after the file types in the order of windows and keys.
void LayOutCloudButton(const CloudButtonHook& record);

// The width of the dialog, in pixels, at which the file name box would end where the button ends,
// if the box grows and shrinks with the dialog.
std::int32_t MinimumWidthOfDialog(const CloudButtonHook& record);

} // namespace obcore
