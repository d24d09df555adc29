// The prefix with which the system takes paths beyond its limit of 260 characters.
#pragma once

#include <string>

namespace ObLib {

// A full path on a drive or on a share with that prefix in front, whatever its length. Every other
// path (relative, a device, one that has a prefix) comes back as it is.
std::wstring WithLongPathPrefix(const std::wstring& path);

} // namespace ObLib
