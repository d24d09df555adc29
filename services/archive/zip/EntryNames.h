// The names that files get inside the zip.
#pragma once

#include <string>
#include <vector>

namespace obarchive {

// One name for each path, in order, all different without regard to case, since most people unpack
// where case makes no difference. A file keeps its own name; each further one of the same name gets
// the first free number from 2 on: "name (2).ext". A number never takes a name that another file
// has by itself, and shortens a name that would become longer than a file system takes.
std::vector<std::wstring> UniqueEntryNames(const std::vector<std::wstring>& paths);

} // namespace obarchive
