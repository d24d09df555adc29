// A module that somebody left where the product's own isn't looked for. It exports nothing; that it
// was loaded at all is what shows.
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
