#include "OBCore/options/BrowserImage.h"

#include <psapi.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

constexpr DWORD kImagePathCapacity = 260; // wide characters

// A file dialog's window is the product's own; the window that owns it belongs to the browser.
DWORD BrowserProcess(HWND window) {
    const HWND owner = GetWindow(window, GW_OWNER);
    DWORD process = 0;
    GetWindowThreadProcessId(owner ? owner : window, &process);
    return process;
}

} // namespace

std::wstring BrowserImage(HWND window) {
    const ObLib::UniqueKernelHandle process(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, BrowserProcess(window)));
    if (!process) return {};
    wchar_t path[kImagePathCapacity] = {};
    const DWORD length = K32GetProcessImageFileNameW(process.Get(), path, kImagePathCapacity);
    return std::wstring(path, length);
}

} // namespace obcore
