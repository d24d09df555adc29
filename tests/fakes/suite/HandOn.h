// Hands a command line on to the suite of the Linux system that Wine runs on.
#pragma once

#include <string>
#include <vector>

namespace obtest {

// Starts hand_on.py, which is beside this program, with the arguments and waits for its end. The
// script and the suite end when this process does. Returns the suite's exit code, 90 when it
// couldn't be started.
int HandOn(const std::vector<std::wstring>& arguments);

} // namespace obtest
