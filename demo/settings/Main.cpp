// Opens the product's settings through obwmcore64.dll of this program's own folder, as the
// product's other programs do. Ends with 0 when they could be opened, whatever the user did, else
// with 1.
#include <windows.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "obwmv/Exports.h"

namespace {

bool OpenSettings() {
    const auto path = ObLib::PathBesideModule(nullptr, L"obwmcore64.dll", MAX_PATH);
    const ObLib::UniqueModule library =
        path ? ObLib::LoadModule(path->c_str()) : ObLib::UniqueModule();
    if (!library) return false;
    auto* const configure = reinterpret_cast<decltype(&OBConfig)>(
        reinterpret_cast<void*>(GetProcAddress(library.Get(), "OBConfig")));
    return configure && configure(nullptr);
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    return ObLib::Guarded(false, &OpenSettings) ? 0 : 1;
}
