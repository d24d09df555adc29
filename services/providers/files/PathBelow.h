// Whether a path is in a folder, by its text.
#pragma once

#include <string>

namespace providers {

// Whether `path` is a file or folder below `folder`, at any depth; upper and lower case are equal.
// The folder has no backslash at its end; nothing is below an empty one. Compares texts alone:
// links and short names are the caller's to resolve.
bool IsPathBelow(const std::wstring& path, const std::wstring& folder) noexcept;

} // namespace providers
