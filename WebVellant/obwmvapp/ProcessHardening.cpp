#include "obwmvapp/ProcessHardening.h"

#include <windows.h>

namespace obwmvapp {
namespace {

// Otherwise a file of the program's folder could take the place of a system library that is loaded
// later by its name alone.
void PreferTheSystemsModules() noexcept {
    PROCESS_MITIGATION_IMAGE_LOAD_POLICY policy{};
    policy.PreferSystem32Images = 1;
    SetProcessMitigationPolicy(ProcessImageLoadPolicy, &policy, sizeof(policy));
}

} // namespace

void HardenProcess() noexcept {
    HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
    // The folder of the program stays in the search: the sister modules may load files of their own
    // from there.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    // The call above doesn't concern loads with an altered search path, as the shell makes for its
    // extensions; this one takes the current folder from those too.
    SetDllDirectoryW(L"");
    PreferTheSystemsModules();
}

} // namespace obwmvapp
