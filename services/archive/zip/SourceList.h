// Which files a run stores.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace obarchive {

// Full paths in the order given, each file once. Paths that differ in case only are one file unless
// both are there and are different ones, as in a folder that minds case. At a path that the system
// can't make absolute the list ends; `tooLong`, if given, gets that path as it was given.
std::vector<std::wstring> DistinctSources(const std::vector<std::wstring>& files,
                                          std::optional<std::wstring>* tooLong = nullptr);

} // namespace obarchive
