// A run of the bench program as its own child, for what happens only once in a process.
#pragma once

#include <string>

namespace bench {

// Starts this program with "--child" and `arguments`; what it wrote to stdout until its end. Empty
// when it can't be started.
std::string OutputOfChild(const std::wstring& arguments);

} // namespace bench
