#include "OBCore/modules/OwnModule.h"

#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"

namespace obcore {

HMODULE OwnModule() noexcept { return ObLib::AppGlobals().programModule; }

std::optional<std::wstring> OwnModulePath() {
    return ObLib::ModulePath(OwnModule(), kPathCapacity);
}

std::optional<std::wstring> PathBesideOwnModule(const wchar_t* fileName) {
    return ObLib::PathBesideModule(OwnModule(), fileName, kPathCapacity);
}

} // namespace obcore
