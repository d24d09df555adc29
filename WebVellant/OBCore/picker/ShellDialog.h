// The calls on the shell's dialog that both entry points make.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <string>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"

namespace obcore {

// Makes a fresh shell dialog; COM is initialised on the thread.
HRESULT CreateShellDialog(ObLib::ComPtr<IFileOpenDialog>& dialog);

// Appends the file-system paths of what was confirmed, and copies each to `last`; items without
// such a path are left out. False only if the dialog gives no results.
bool CollectPickedPaths(IFileOpenDialog& dialog, std::vector<std::wstring>& paths,
                        std::wstring& last);

} // namespace obcore
