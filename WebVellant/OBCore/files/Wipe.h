// Removing temporary files: by the wipe program where it can be found, by deletion otherwise.
#pragma once

#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {

// Starts obwipe64.exe with `arguments`. Null when the program is neither beside this library nor
// where the main product is registered, or doesn't start.
ObLib::UniqueKernelHandle StartWipeProcess(const std::wstring& arguments);

// Hands the items to the wipe program, without waiting for it. Empties the list when the program
// was started, leaves it as it was when not.
void LaunchWipe(std::vector<std::wstring>& items);

// LaunchWipe for both lists as one, files first. Both come back empty when the program was started,
// unchanged when not: the caller has to act then.
void WipeFiles(std::vector<std::wstring>& files, std::vector<std::wstring>& folders);

// A run's local record of what it copied.
struct WorkingCopy {
    bool HasFolder = false;           // the temporary folder could be found
    std::wstring Folder;              // temporary folder, with its trailing backslash
    std::vector<std::wstring> Files;  // the picked paths, then their copies
};

namespace CompressUtils {

// Adds every file below `folder`, subfolders included. A folder that can't be searched adds nothing.
void CollectFolderFiles(const std::wstring& folder, std::vector<std::wstring>& files);

// Clears a run's temporary folder. Without a folder nothing is searched and nothing is deleted.
void CleanupWorkingCopy(const WorkingCopy& copy);

}  // namespace CompressUtils
}  // namespace obcore
