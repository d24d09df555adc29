// Picking files below the folders of the accounts, with the shell's dialog.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

#include "services/providers/folder/FolderAccount.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

struct PickableFolder {
    StorageAccount account;
    FolderSettings settings;
};

// What became of one selection: the files, or why it isn't taken.
struct PickedPaths {
    std::vector<PickedFile> files;
    std::wstring sentence;
};

// The files with their links, if each of them is below one of the folders and the links fit the
// text for the mail. Looks at the folders around the files, so that a path that leads there another
// way counts as well.
PickedPaths LinksOf(const std::vector<std::wstring>& paths, std::span<const PickableFolder> folders,
                    const std::wstring& displayName);

// Shows the shell's dialog, which begins in the folder `first`, until the user chose files that are
// taken, or left it. On the thread of the owner, whose messages are dispatched; the dialog runs on
// a thread of its own.
PickResult PickFromFolders(HWND owner, std::span<const PickableFolder> folders, std::size_t first,
                           const std::wstring& displayName);

} // namespace providers
