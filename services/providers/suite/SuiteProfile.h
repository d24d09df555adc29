// The settings with which LibreOffice converts a document.
#pragma once

#include <string>

namespace providers {

// The content of registrymodifications.xcu in a new profile: macros aren't run, links aren't
// updated and nothing that the document only refers to is loaded, from the disk or the network, so
// that no file of the user's gets into a PDF because a document names it.
std::string SuiteProfile();

// A full path, on a drive or a share, without the prefix for long paths, as a URL.
std::string FileUrl(const std::wstring& path);

} // namespace providers
