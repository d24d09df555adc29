#include "demo/mailpage/HookedLibrary.h"

#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/ModulePath.h"

namespace mailpage {
namespace {

template <class Function>
bool Fetch(HMODULE module, const char* name, Function*& entry) {
    entry = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return entry != nullptr;
}

} // namespace

bool HookedLibrary::Load() {
    const auto path = ObLib::PathBesideModule(nullptr, L"obwmcore64.dll", MAX_PATH);
    if (!path) return false;
    module_ = ObLib::LoadModule(path->c_str());
    return module_ && Fetch(module_.Get(), "GetOpenFileNameInBrowser", getOpenFileName) &&
           Fetch(module_.Get(), "FileOpenDialog_ShowInBrowser", show) &&
           Fetch(module_.Get(), "FileOpenDialog_GetResultInBrowser", getResult) &&
           Fetch(module_.Get(), "FileOpenDialog_GetResultsInBrowser", getResults);
}

} // namespace mailpage
