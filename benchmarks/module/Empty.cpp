// The smallest DLL that the compiler can make: what loading any module costs.
#include <windows.h>

extern "C" int Nothing() { return 0; }
