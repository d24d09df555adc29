// The page asks for files, on either path, through the library.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "demo/mailpage/HookedLibrary.h"
#include "demo/mailpage/MailPageContext.h"
#include "demo/mailpage/Options.h"

namespace mailpage {

// What the page was given.
struct AttachAnswer {
    std::wstring answer;             // the export's result: a BOOL, or an HRESULT as 0x...
    std::vector<std::wstring> paths; // full paths
    std::vector<std::wstring> links;
    std::vector<CleanupNote> cleanup;
    bool browserDialog = false; // the browser's own dialog was asked for
};

// Returns when the dialog has ended; the calling thread dispatches its messages until then. COM is
// initialised on it.
AttachAnswer AskForFiles(const HookedLibrary& library, const Options& options, HWND owner);

// The paths of an lpstrFile as a dialog left it: one full path, or a folder and names in it.
std::vector<std::wstring> SplitFileList(const wchar_t* list);

// File types of an OPENFILENAMEW from "Name|patterns|...": all files when the text is empty.
std::wstring FilterList(const std::wstring& text);

} // namespace mailpage
