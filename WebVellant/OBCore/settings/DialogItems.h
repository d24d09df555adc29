// What the settings read of the controls of a dialog.
#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace obcore {

// The whole text of the control `id`; empty when there is no such control. On the dialog's thread.
std::wstring ItemText(HWND dialog, int id);

// Whether the box or radio `id` is checked.
bool IsChecked(HWND dialog, int id);
void SetChecked(HWND dialog, int id, bool isChecked);

// Checks `chosen` and unchecks the other radios of its group. Each is set: that makes the checked
// one the group's tab stop, while an unchecked one that got the focus would count as clicked.
void CheckOneOf(HWND dialog, std::span<const int> radios, int chosen);

// A control that isn't there is no error: layouts differ in what they show.
void SetEnabled(HWND dialog, int id, bool isEnabled);

} // namespace obcore
