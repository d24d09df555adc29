// The question for the password of a PDF.
#pragma once

#include <windows.h>

#include <string>

#include "ObLib/Src/Win32/Secret.h"

namespace providers {

enum class PasswordAnswer {
    Given,       // the user typed a password
    LeaveAsItIs, // the file isn't changed
    Cancelled,   // the run ends
};

// Shows the sentence and a field for a password in front of the owner, which may be null or no
// longer exist, and waits. `password` is set by Given alone: UTF-8, not empty, at most as long as
// the format allows; what is after that counts in no PDF. No copy stays in memory. On the thread of
// the owner, or of a stage that the owner's thread waits for with its messages dispatched.
PasswordAnswer AskForPdfPassword(HWND owner, const std::wstring& sentence, ObLib::Secret& password);

} // namespace providers
