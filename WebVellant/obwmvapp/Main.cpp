// The host process: serves one request of one browser with the library in its own folder, and ends
// with that library's result.
#include <windows.h>

#include <objbase.h>

#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/Exports.h"
#include "obwmvapp/HostCommandLine.h"
#include "obwmvapp/ProcessHardening.h"

namespace {

constexpr int kFailed = -1;
constexpr wchar_t kLibraryName[] = L"obwmcore64.dll";

// By the full path in this program's own folder, never by a search.
ObLib::UniqueModule LoadLibraryBesideProgram() {
    const auto path = ObLib::PathBesideModule(nullptr, kLibraryName, MAX_PATH);
    return path ? ObLib::LoadModule(path->c_str()) : ObLib::UniqueModule();
}

int Serve(const obwmvapp::HostRequest& request) {
    ObLib::UniqueModule library = LoadLibraryBesideProgram();
    if (!library) return kFailed;
    using Show = decltype(&ShowFileOpenDialogInProcess);
    const FARPROC entry = GetProcAddress(library.Get(), "ShowFileOpenDialogInProcess");
    // The library stays loaded until the process ends: the shell may keep threads and windows whose
    // code is in the library.
    static_cast<void>(library.Release());
    if (!entry) return kFailed;
    return reinterpret_cast<Show>(reinterpret_cast<void*>(entry))(request.owner, request.id);
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    obwmvapp::HardenProcess();
    const auto request = obwmvapp::ParseHostCommandLine(GetCommandLineW());
    if (!request) return kFailed;
    // The dialog driver makes its dialog first thing and expects COM on this thread. COM is never
    // uninitialised here: that driver doesn't release its dialog, which would then outlive COM. The
    // end of the process ends both.
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {
        return kFailed;
    }
    return Serve(*request);
}
