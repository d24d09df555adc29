// Texts of this module's own resources, and its message boxes.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>

namespace providers {

// A text of the string table; empty when there is none.
std::wstring OwnText(UINT id);

// The same with "%1" to "%9" replaced by the inserts, each as it is.
std::wstring FormatOwnText(UINT id, std::initializer_list<std::wstring> inserts);

// The name at the end of a path.
std::wstring FileNameOf(const std::wstring& path);

// One sentence for the user, in a box in front of the owner; of nothing when that no longer exists.
void ShowSentence(HWND owner, const std::wstring& sentence);

// A question in such a box. True after Yes; No has the focus, as Yes lets something out.
bool AskQuestion(HWND owner, const std::wstring& question);

// The same for something that failed. True when the user wants to try again, for which the button
// has the focus.
bool AskToTryAgain(HWND owner, const std::wstring& sentence);

} // namespace providers
