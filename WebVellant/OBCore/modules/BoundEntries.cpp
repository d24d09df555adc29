#include "OBCore/modules/BoundEntries.h"

#include "ObLib/Src/Win32/LoadModule.h"

namespace obcore {

HMODULE BindModule(const std::wstring& path, bool (*fetchAll)(HMODULE module)) {
    ObLib::UniqueModule module = ObLib::LoadModule(path.c_str());
    if (!module) {
        ObTrace("LoadLibrary %S failed", path.c_str());
        return nullptr;
    }
    return fetchAll(module.Get()) ? module.Release() : nullptr;
}

} // namespace obcore
