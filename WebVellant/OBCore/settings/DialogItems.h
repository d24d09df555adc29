// What the settings read of the controls of a dialog.
#pragma once

#include <windows.h>

#include <string>

namespace obcore {

// The whole text of the control `id`; empty when there is no such control. On the dialog's thread.
std::wstring ItemText(HWND dialog, int id);

// Whether the box or radio `id` is checked.
bool IsChecked(HWND dialog, int id);
void SetChecked(HWND dialog, int id, bool isChecked);

// A control that isn't there is no error: layouts differ in what they show.
void SetEnabled(HWND dialog, int id, bool isEnabled);

} // namespace obcore
