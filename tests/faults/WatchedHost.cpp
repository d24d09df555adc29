// Makes more moments of a host's life calls of the fake service, so that a test sees them and can
// block them: each deletion of a file by the library, the end of the process, and the first write
// to the second page of the block, which is in the middle of any longer answer.
#include <windows.h>

#include "contracts/ExchangeBlock.h"
#include "tests/fakes/Recording.h"
#include "tests/support/ImportPatch.h"

namespace {

constexpr wchar_t kHost[] = L"obwmvapp.exe";
constexpr wchar_t kLibrary[] = L"obwmcore64.dll";

// The browser's process loads this module too; only a host is watched.
bool IsHost() { return GetModuleHandleW(nullptr) == GetModuleHandleW(kHost); }

BOOL WINAPI WatchedDeleteFile(LPCWSTR path) {
    obtest::RecordCall(L"DeleteFileW(" + obtest::Quoted(path) + L")");
    return DeleteFileW(path);
}

constexpr SIZE_T kPage = 4096; // bytes
BYTE* secondPage = nullptr;

// A write to the guarded page arrives here first, and continues after the recorded call.
LONG CALLBACK OnPageWrite(EXCEPTION_POINTERS* info) {
    constexpr ULONG_PTR write = 1;
    const EXCEPTION_RECORD& record = *info->ExceptionRecord;
    if (record.ExceptionCode != static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION) || !secondPage ||
        record.ExceptionInformation[0] != write)
        return EXCEPTION_CONTINUE_SEARCH;
    const ULONG_PTR page = reinterpret_cast<ULONG_PTR>(secondPage);
    if (record.ExceptionInformation[1] - page >= kPage) return EXCEPTION_CONTINUE_SEARCH;
    obtest::RecordCall(L"WriteSecondPage()");
    DWORD before = 0;
    VirtualProtect(secondPage, kPage, PAGE_READWRITE, &before);
    return EXCEPTION_CONTINUE_EXECUTION;
}

LPVOID WINAPI WatchedMapView(HANDLE section, DWORD access, DWORD high, DWORD low, SIZE_T size) {
    LPVOID const view = MapViewOfFile(section, access, high, low, size);
    if (view && size == obcontract::kExchangeBlockSize) {
        secondPage = static_cast<BYTE*>(view) + kPage;
        DWORD before = 0;
        VirtualProtect(secondPage, kPage, PAGE_READONLY, &before);
    }
    return view;
}

// Never removed: the library stays loaded until the process ends.
template <class Function>
void Watch(const char* name, Function* watched) {
    void** const slot = obtest::FindImport(GetModuleHandleW(kLibrary), "kernel32.dll", name);
    if (slot) obtest::ExchangeImport(slot, reinterpret_cast<void*>(watched));
}

void WatchLibrary() {
    Watch("DeleteFileW", &WatchedDeleteFile);
    Watch("MapViewOfFile", &WatchedMapView);
    AddVectoredExceptionHandler(1, &OnPageWrite);
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (!IsHost()) return TRUE;
    if (reason == DLL_PROCESS_ATTACH) WatchLibrary();
    if (reason == DLL_PROCESS_DETACH) obtest::RecordCall(L"ProcessEnds()");
    return TRUE;
}
