// A file that an account has stored in its folder: how it is named, recognised and deleted.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "services/providers/storage/StorageProvider.h"

namespace providers {

// Where the file is, and how many of the folders around it were made for it.
struct FolderPlace {
    std::wstring folder; // of the account when the file was stored
    std::wstring below;  // the file's path there
    unsigned madeFolders = 0;
};
std::wstring FullPath(const FolderPlace& place);

// As the text that StoredFile::path keeps, and back; nothing when it is no such text.
std::wstring TextOf(const FolderPlace& place);
std::optional<FolderPlace> PlaceOf(const std::wstring& text);

// Size, time of the last write, and the file's id where the file system keeps one: what changes
// when the file is another one or has another content. Empty when the system doesn't report it.
std::wstring VersionOf(HANDLE open);
// Of the file at this path, which must not be a link to be recognised.
std::wstring VersionAt(const std::wstring& path);

// Deletes the file if it is unchanged, and each folder that was made for it and is empty then. Only
// a folder whose name an upload makes is removed, whatever the text asks for.
DeletionEnd DeleteFolderFile(const StoredFile& file);

// Deletes what an upload has left under its temporary name, and its empty folders as above. The
// text is that of its place; Changed when its name isn't one that uploads use. An upload that still
// runs has the file open: Unreachable.
DeletionEnd RemoveFolderPart(const std::wstring& text);

// Removes so many of the folders around `path`, from the innermost one, each only if it is empty.
void RemoveEmptyFolders(const std::wstring& path, unsigned count) noexcept;

} // namespace providers
