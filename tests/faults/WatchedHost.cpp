// Makes two more moments of a host's life calls of the stand-in, so that a test sees them and can
// hold them: each deletion of a file by the library, and the end of the process.
#include <windows.h>

#include "tests/standins/Recording.h"
#include "tests/support/ImportDouble.h"

namespace {

constexpr wchar_t kHost[] = L"obwmvapp.exe";
constexpr wchar_t kLibrary[] = L"obwmcore64.dll";

// The browser's process binds this module too; only a host is watched.
bool IsHost() { return GetModuleHandleW(nullptr) == GetModuleHandleW(kHost); }

BOOL WINAPI WatchedDeleteFile(LPCWSTR path) {
    obtest::RecordCall(L"DeleteFileW(" + obtest::Quoted(path) + L")");
    return DeleteFileW(path);
}

// For as long as the process lives, as the library stays loaded as long.
void WatchDeletions() {
    void** const slot =
        obtest::FindImport(GetModuleHandleW(kLibrary), "kernel32.dll", "DeleteFileW");
    if (slot) obtest::ExchangeImport(slot, reinterpret_cast<void*>(&WatchedDeleteFile));
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (!IsHost()) return TRUE;
    if (reason == DLL_PROCESS_ATTACH) WatchDeletions();
    if (reason == DLL_PROCESS_DETACH) obtest::RecordCall(L"ProcessEnds()");
    return TRUE;
}
