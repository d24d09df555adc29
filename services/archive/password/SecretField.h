// An edit field that holds a password. The field keeps its text, and what was deleted from it, in
// memory of its own, which it neither wipes nor lets go when asked; these calls see to it that what
// it holds is overwritten. For single-line fields of this process, on the thread that owns them.
#pragma once

#include <windows.h>

#include "services/archive/crypto/Secret.h"

namespace obarchive {

// Above what any buffer of a caller takes, so that a text that is too long is seen as such and not
// cut by the field.
inline constexpr int kLongestText = 2047; // UTF-16 units
using FieldText = WipedBuffer<wchar_t, kLongestText + 1>;

// Makes the field grow to its largest size at once. A field that grows while somebody types moves
// its text and leaves the old place as it is, out of reach. Sends EN_CHANGE.
void PrepareSecretField(HWND field);

void ReadSecretField(HWND field, FieldText& text);

// Replaces the text and shows it from its beginning. Sends EN_CHANGE.
void FillSecretField(HWND field, const wchar_t* text);

// Overwrites the text and what the field keeps for undoing, and leaves the field empty. Sends
// EN_CHANGE.
void WipeSecretField(HWND field);

} // namespace obarchive
