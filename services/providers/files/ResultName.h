// Names for results that are of another kind than the file they were made of.
#pragma once

#include <string>

namespace providers {

// `path` with another extension, without a dot: "photo.heic" becomes "photo.jpg", and with number 2
// "photo (2).jpg".
std::wstring ResultPath(const std::wstring& path, const std::wstring& extension, int number = 1);

// Whether the name ends with the extension, in any letter case.
bool HasExtension(const std::wstring& path, const std::wstring& extension);

} // namespace providers
