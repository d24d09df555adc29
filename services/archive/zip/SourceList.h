// Which files a run stores.
#pragma once

#include <string>
#include <vector>

namespace obarchive {

// Full paths in the order given, each file once. Paths that differ in case only are one file unless
// both are there and are different ones, as in a folder that minds case. A path that the system
// can't make absolute comes back empty.
std::vector<std::wstring> DistinctSources(const std::vector<std::wstring>& files);

} // namespace obarchive
