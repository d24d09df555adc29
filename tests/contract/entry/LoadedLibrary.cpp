#include "tests/contract/entry/LoadedLibrary.h"

#include "tests/fakes/Recording.h"

namespace obtest {

LoadedLibrary::LoadedLibrary() : module(LoadLibraryW(BesideProgram(L"obwmcore64.dll").c_str())) {
    getOpenFileName = Entry<decltype(GetOpenFileNameInBrowser)>("GetOpenFileNameInBrowser");
    show = Entry<decltype(FileOpenDialog_ShowInBrowser)>("FileOpenDialog_ShowInBrowser");
    getResult =
        Entry<decltype(FileOpenDialog_GetResultInBrowser)>("FileOpenDialog_GetResultInBrowser");
    getResults =
        Entry<decltype(FileOpenDialog_GetResultsInBrowser)>("FileOpenDialog_GetResultsInBrowser");
}

LoadedLibrary::~LoadedLibrary() {
    module.Reset();
    // A loader that answers the library's second load of its own file with the loaded module counts
    // that load too, and the library would keep itself loaded.
    if (const HMODULE loaded = GetModuleHandleW(L"obwmcore64.dll")) FreeLibrary(loaded);
}

} // namespace obtest
