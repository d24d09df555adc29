#include "obwmv/Library.h"

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obwmv {
namespace {

struct ActivationContextPolicy : ObLib::NullPolicy<HANDLE> {
    static void Close(Handle context) noexcept { ReleaseActCtx(context); }
};

ObLib::UniqueResource<ActivationContextPolicy> loadContext;

} // namespace

void OnProcessAttach(HMODULE module) {
    if (!GetCurrentActCtx(loadContext.Put())) loadContext.Reset();
    ObLib::ObXAppGlobals& globals = ObLib::AppGlobals();
    globals.programModule = module;
    if (!globals.languageModule) globals.languageModule = module;
}

void OnProcessDetach() noexcept {
    obcore::FreeProviderManager();
    obcore::FreeArchiveService();
    obcore::FreeResourceModule();
    ObLib::AppGlobals().Destroy(0);
    loadContext.Reset();
}

HANDLE LibraryActivationContext() noexcept { return loadContext.Get(); }

ActivationScope::ActivationScope() noexcept
    : active_(ActivateActCtx(LibraryActivationContext(), &cookie_) != FALSE) {}

ActivationScope::~ActivationScope() {
    if (active_) DeactivateActCtx(0, cookie_);
}

} // namespace obwmv
