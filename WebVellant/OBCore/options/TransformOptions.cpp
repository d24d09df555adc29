#include "OBCore/options/TransformOptions.h"

#include <io.h>

#include "OBCore/modules/OwnModule.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/options/SettingsStore.h"
#include "OBCore/options/TransformTable.h"

using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;

namespace obcore {
namespace {

// A path that can't be had counts as a file that isn't there.
bool IsBesideThisLibrary(const wchar_t* fileName) {
    constexpr int kExists = 0;
    const auto path = PathBesideOwnModule(fileName);
    return path && _waccess(path->c_str(), kExists) == 0;
}

bool IsAvailable(const TransformRow& transform, ProviderManagerHandle manager) {
    if (transform.extraFile && !IsBesideThisLibrary(transform.extraFile)) return false;
    if (!manager) return false;
    const auto id = static_cast<std::uint32_t>(transform.id);
    return ProviderManager().IsProviderSupport(manager, id, ProviderKind::Transform) != 0;
}

} // namespace

void LoadTransformOptions(HKEY userKey, OBOptions& options) {
    for (const TransformRow& transform : kTransforms) {
        bool wanted = false;
        if (!ReadSwitch(userKey, transform.value, wanted)) continue;
        options.*transform.option = wanted && IsAvailable(transform, options.ProviderManager);
    }
}

void SaveTransformOptions(HKEY userKey, const OBOptions& options) {
    for (const TransformRow& transform : kTransforms) {
        WriteSwitch(userKey, transform.value, options.*transform.option);
    }
}

} // namespace obcore
