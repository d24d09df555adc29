#include "OBCore/options/OBAttachJob.h"

#include <psapi.h>

#include "OBCore/modules/ManagerCalls.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

constexpr DWORD kImagePathCapacity = 260; // wide characters

// The parent is the picker's own window; the window that owns it belongs to the browser.
DWORD BrowserProcess(HWND parent) {
    const HWND owner = GetWindow(parent, GW_OWNER);
    DWORD process = 0;
    GetWindowThreadProcessId(owner ? owner : parent, &process);
    return process;
}

// Empty when the browser's process can't be opened.
std::wstring BrowserImage(HWND parent) {
    const ObLib::UniqueKernelHandle process(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, BrowserProcess(parent)));
    if (!process) return {};
    wchar_t path[kImagePathCapacity] = {};
    const DWORD length = K32GetProcessImageFileNameW(process.Get(), path, kImagePathCapacity);
    return std::wstring(path, length);
}

} // namespace

// The manager comes last: nothing after it can throw and leave it without an owner.
OBAttachJob::OBAttachJob(const OBOptions& options, HWND parent)
    : OBOptions(options), ParentWindow(parent), BrowserImagePath(BrowserImage(parent)) {
    OwnedProviderManager = obcore::ProviderManager().CreateObExtensionsManager();
    ProviderManager = OwnedProviderManager;
}

OBAttachJob::~OBAttachJob() {
    if (!OwnedProviderManager) return;
    // After a cancel the worker of the transforms may still be in its last call, which Deinit has
    // ended. One that hangs keeps its manager until the process ends.
    if (AwaitManagerCalls(OwnedProviderManager)) {
        obcore::ProviderManager().DeleteObExtensionsManager(OwnedProviderManager);
    } else {
        ObTrace("A call of the provider manager doesn't end");
    }
}

OBAttachJob& OBAttachJob::operator=(const OBOptions& options) {
    OBOptions::operator=(options);
    return *this;
}

} // namespace obcore
