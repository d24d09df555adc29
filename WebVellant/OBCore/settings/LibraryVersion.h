// The version of this library, as its file states it.
#pragma once

#include <string>

namespace obcore {

struct LibraryVersion {
    std::wstring file;    // "FileVersion"
    std::wstring product; // "ProductVersion"
};

// From the version resource of the own module, in the first language that it names. A text that
// isn't there is empty. Any thread.
LibraryVersion ReadLibraryVersion();

} // namespace obcore
