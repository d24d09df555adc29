// A module with the transforms in it, to be unloaded while a worker is at work.
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/transforms/Transforms.h"

// Runs the transforms: 1 to go on, 0 to stop. The provider manager is in the program's folder; the
// dialog is in the program. The job is never deleted, as its end would wait for the worker's call.
extern "C" int RunInModule(HWND owner) {
    using namespace obcore;
    if (!LoadProviderManager() || !BindResourceModule()) return -1;
    OBAttachJob& job = *new OBAttachJob(OBOptions{}, owner);
    ProviderManager().Init(job.OwnedProviderManager, 0, L"");
    job.AutoResizeImages = true;
    std::vector<std::wstring> files = {L"C:\\t\\a.doc"};
    const bool goOn = CompressUtils::RunTransforms(job, files, L"C:\\t\\");
    FreeResourceModule();
    return goOn;
}
