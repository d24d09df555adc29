#include "OBCore/modules/OwnModule.h"

#include <shlwapi.h>

#include "ObLib/Src/Win32/ObXAppGlobals.h"

namespace obcore {

HMODULE OwnModule() noexcept { return ObLib::AppGlobals().programModule; }

std::optional<std::wstring> OwnModulePath() {
    wchar_t path[kPathCapacity];
    const DWORD length = GetModuleFileNameW(OwnModule(), path, kPathCapacity);
    if (length == 0 || length == kPathCapacity) return std::nullopt;
    return std::wstring(path, length);
}

std::optional<std::wstring> PathBesideOwnModule(const wchar_t* fileName) {
    wchar_t path[kPathCapacity];
    const DWORD length = GetModuleFileNameW(OwnModule(), path, kPathCapacity);
    if (length == 0 || length == kPathCapacity) return std::nullopt;
    if (!PathRemoveFileSpecW(path) || !PathAppendW(path, fileName)) return std::nullopt;
    return std::wstring(path);
}

} // namespace obcore
