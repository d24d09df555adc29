#pragma once

#include <windows.h>

// Called on the main thread before the first test, with the module handle of the test program, so
// that code under test finds its resources there as it finds them in a DLL. Null (the default)
// leaves it out. A test program sets it from a static initialiser:
//
//   const bool attached = (g_obTestModuleAttach = &AttachModule, true);
extern void (*g_obTestModuleAttach)(HMODULE module);

// Exit codes of a test program besides GoogleTest's own 0 and 1.
enum ObTestExitCode : int {
    ObTestNothingMatched = 3, // the filter matched no test
    ObTestUnknownSuite = 4,   // the program has a suite that no ctest entry runs
    ObTestTimeIsUp = 5,       // the watchdog ended it
};
