// A DLL with as little in it as the compiler can make: what loading any module costs.
#include <windows.h>

extern "C" int Nothing() { return 0; }
