// What the loader calls. A file of its own, so that only the library has it and no test program.
#include <windows.h>

#include "obwmv/Library.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) obwmv::OnProcessAttach(module);
    if (reason == DLL_PROCESS_DETACH) obwmv::OnProcessDetach();
    return TRUE;
}
