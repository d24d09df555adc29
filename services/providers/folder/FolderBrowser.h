// The shell's dialog for a folder.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace providers {

// The full path of the folder that the user chose; empty after a cancel, and nothing when the
// dialog can't be shown. Begins in `first`, if that is a folder that responds. On the thread of the
// owner, whose messages are dispatched; the dialog runs on a thread of its own.
std::optional<std::wstring> AskForFolder(HWND owner, const std::wstring& first);

} // namespace providers
