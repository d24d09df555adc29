// A password on the clipboard, where the user asked for it. All calls in a module come from the one
// thread that shows its dialogs.
#pragma once

#include <windows.h>

namespace ObLib {

inline constexpr UINT kCopiedSecretLifetime = 60'000; // milliseconds

// Puts the text on the clipboard with `window` as its owner. Before the text come marks by which
// the system keeps it out of the clipboard's history, off other devices and away from clipboard
// monitors. False when another program has the clipboard open or a mark can't be set; the text
// isn't there then.
//
// After kCopiedSecretLifetime the calling thread takes the text off the clipboard again, unless
// something else has been copied since. That needs the thread to dispatch messages; the dialog may
// be closed by then. When the process ends earlier, the text stays.
bool CopySecret(HWND window, const wchar_t* text);

// Takes the text off the clipboard at once, unless something else has been copied since. Tries
// again every second while another program has the clipboard open.
void ForgetCopiedSecret();

} // namespace ObLib
