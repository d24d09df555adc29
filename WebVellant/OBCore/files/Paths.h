// Putting paths together, without the platform's limit of 260 characters in the way.
#pragma once

#include <string>

namespace obcore {

// `folder` and `name` joined as PathCombineW does it; where the result is too long for that call,
// both put together as they are, so that the path never comes out empty. So are they where the name
// begins with two points: a name stays in its folder.
std::wstring CombinePath(const std::wstring& folder, const std::wstring& name);

// The form in which the system takes a full path of 260 characters and more. A shorter path, and
// one that isn't full, comes back as it is.
std::wstring ExtendedPath(const std::wstring& path);

} // namespace obcore
