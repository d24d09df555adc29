#include "obwmv/Configuration.h"

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/settings/ConfigurationEntry.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "obwmv/Library.h"

namespace obwmv {

bool Configure(HWND owner) {
    if (!obcore::LoadArchiveService() || !obcore::BindResourceModule() ||
        !obcore::LoadProviderManager()) {
        return false;
    }
    const ActivationScope activation;
    if (!activation) return false;
    static_cast<void>(ObLib::RanGuarded([&] { obcore::ShowConfiguration(owner); }));
    return true;
}

} // namespace obwmv
