#include "demo/mailpage/HookedLibrary.h"

#include <shlwapi.h>

namespace mailpage {
namespace {

template <class Function>
bool Fetch(HMODULE module, const char* name, Function*& entry) {
    entry = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return entry != nullptr;
}

} // namespace

bool HookedLibrary::Load() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length == MAX_PATH) return false;
    if (!PathRemoveFileSpecW(path) || !PathAppendW(path, L"obwmcore64.dll")) return false;
    module_.Reset(LoadLibraryW(path));
    return module_ && Fetch(module_.Get(), "GetOpenFileNameInBrowser", getOpenFileName) &&
           Fetch(module_.Get(), "FileOpenDialog_ShowInBrowser", show) &&
           Fetch(module_.Get(), "FileOpenDialog_GetResultInBrowser", getResult) &&
           Fetch(module_.Get(), "FileOpenDialog_GetResultsInBrowser", getResults);
}

} // namespace mailpage
