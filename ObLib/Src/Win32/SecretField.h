// An edit field for a password. The field stores its text, and deleted text, in memory of its own
// that it doesn't wipe; these calls make it overwrite that memory. For single-line fields of this
// process, on the thread that owns them.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/Secret.h"

namespace ObLib {

// More than any caller's buffer has room for, so that a text that is too long is refused and not
// cut by the field.
inline constexpr int kLongestSecret = 2047; // UTF-16 units
using FieldText = WipedBuffer<wchar_t, kLongestSecret + 1>;

// Makes the field allocate its largest size at once. A field that grows while the user types copies
// its text and doesn't wipe the memory before. Sends EN_CHANGE.
void PrepareSecretField(HWND field);

void ReadSecretField(HWND field, FieldText& text);

// Replaces the text and shows it from its beginning. Sends EN_CHANGE.
void FillSecretField(HWND field, const wchar_t* text);

// Overwrites the text and the field's undo memory, and leaves the field empty. Sends EN_CHANGE.
void WipeSecretField(HWND field);

} // namespace ObLib
