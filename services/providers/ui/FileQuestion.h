// The system's dialogs for the name of a file.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace providers {

struct FileQuestion {
    HWND owner;                         // in front of which the dialog is shown
    UINT filter;                        // id of the text with the kinds of files, parted by '|'
    std::size_t longest;                // characters of a path
    std::wstring name = {};             // that the user may change
    const wchar_t* extension = nullptr; // of a name without one
};

// The full path that the user chose; empty after a cancel. The process's current folder is the same
// afterwards. On the thread of the owner. Throws std::bad_alloc.
std::wstring AskForFileToOpen(const FileQuestion& question); // one that exists
std::wstring AskForFileToSave(const FileQuestion& question); // in a folder that exists

} // namespace providers
