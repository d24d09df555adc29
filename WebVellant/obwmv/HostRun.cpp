#include "obwmv/HostRun.h"

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "obwmv/HostEntry.h"
#include "obwmv/Library.h"

namespace obwmv {
namespace {

constexpr int kFailed = -1;

bool BindAllModules() {
    return obcore::LoadArchiveService() && obcore::BindResourceModule() &&
           obcore::LoadProviderManager();
}

} // namespace

int RunHost(HWND owner, std::uint32_t id) {
    if (!BindAllModules()) return kFailed;
    obcore::ArchiveService().LogLaunch();
    const ActivationScope activation;
    if (!activation) return kFailed; // LogExit belongs to a run, and there is none
    const ObLib::ScopeExit logExit([] { obcore::ArchiveService().LogExit(); });
    return HostEntry(owner, id);
}

} // namespace obwmv
