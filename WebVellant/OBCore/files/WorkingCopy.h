// The copies that a run works on, and how they go away again.
#pragma once

#include <string>
#include <vector>

namespace obcore {

// A run's local record of what it copied.
struct WorkingCopy {
    bool HasFolder = false;          // the run has a temporary folder of its own
    std::wstring Folder;             // that folder, with its trailing backslash; else empty
    std::vector<std::wstring> Files; // the picked paths, then their copies
};

// Whether a junction or a symbolic link has taken the place of a folder that the run has made. What
// it leads to belongs to somebody else. With or without a trailing backslash.
bool IsLinkInstead(std::wstring folder);

// Clears a result that goes nowhere, files in a folder that the run has made for them: by the wipe
// program, which works on after this call, or by plain deletion. When a link has taken the folder's
// place, nothing is deleted. What can't be removed stays, without a message.
void WipeResult(std::vector<std::wstring> files, const std::wstring& folder);

namespace CompressUtils {

// Adds every file below `folder`, subfolders included, in the order of the file system. A folder
// that can't be searched adds nothing. A junction or a symbolic link is passed over: it is neither
// followed nor added, as what it leads to isn't the run's own.
void CollectFolderFiles(const std::wstring& folder, std::vector<std::wstring>& files);

// Clears a run's temporary folder: by the wipe program, which works on after this call, or by plain
// deletion, which leaves subfolders and links. Without a folder, or when a link has taken its
// place, nothing is searched and nothing is deleted. What can't be removed stays, without a
// message.
void CleanupWorkingCopy(const WorkingCopy& copy);

} // namespace CompressUtils
} // namespace obcore
