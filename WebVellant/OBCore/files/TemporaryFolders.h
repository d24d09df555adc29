// The temporary folders of a run and the copies that it works on. All of it runs on the picker's
// dialog thread.
#pragma once

#include <string>
#include <vector>

namespace obcore {

// The user's temporary folder with its trailing backslash, in its long form if the system gives it.
// False, with `folder` left alone, when it can't be had in 258 characters.
bool GetTemporaryFolder(std::wstring& folder);

// Makes a new folder below `folder` (with its trailing backslash) and puts its path, with a
// trailing backslash, in its place. The name is the time since the machine started in hexadecimal
// milliseconds, counted on while it is taken. False, with `folder` left alone, when the base
// doesn't exist. True means that the name was free, not that the folder could be made.
bool CreateUniqueTempFolder(std::wstring& folder);

namespace CompressUtils {

// Copies each file into `folder` (with its trailing backslash) under its own name, over an existing
// one. `files` then lists the copies that succeeded, in order; two sources of one name end in one
// file that is listed twice. The sources are only read.
void CopyFilesToFolder(const std::wstring& folder, std::vector<std::wstring>& files);

} // namespace CompressUtils
} // namespace obcore
