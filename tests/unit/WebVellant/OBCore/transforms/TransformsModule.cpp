// A module with the transforms in it, to be unloaded while a worker is at work.
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/transforms/Transforms.h"

// One run on `owner`, with a manager that is deleted at its end: 1 to go on, 0 to stop. The
// providers and the dialog are beside and in the program.
extern "C" int RunInModule(HWND owner) {
    using namespace obcore;
    if (!LoadProviderManager() || !BindResourceModule()) return -1;
    OBAttachJob job(OBOptions{}, owner);
    ProviderManager().Init(job.OwnedProviderManager, 0, L"");
    job.AutoResizeImages = true;
    std::vector<std::wstring> files = {L"C:\\t\\a.doc"};
    const bool goOn = CompressUtils::RunTransforms(job, files, L"C:\\t\\");
    ProviderManager().Deinit(job.OwnedProviderManager);
    FreeResourceModule();
    return goOn;
}
