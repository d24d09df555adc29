// Finds the office suite that is started as a program.
#pragma once

#include <string>

namespace providers {

// The full path of LibreOffice's program as its installer registered it, for either kind of
// processor. Empty when none is registered, or only one that TrustedProgram refuses.
std::wstring InstalledSuite();

} // namespace providers
