// A module in a folder where the product must not look for its own. It exports nothing and records
// that it was loaded.
#include <windows.h>

#include "tests/fakes/Recording.h"

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(module, path, MAX_PATH);
        obtest::RecordCall(L"Planted(" + obtest::Quoted(path) + L")");
    }
    return TRUE;
}
