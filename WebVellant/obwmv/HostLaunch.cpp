#include "obwmv/HostLaunch.h"

#include <cstdio>
#include <optional>
#include <string>

#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obwmv {
namespace {

constexpr wchar_t kLayerClass[] = L"WebVellantLayer";
constexpr wchar_t kHostFileName[] = L"obwmvapp.exe";
constexpr std::size_t kCommandLineCapacity = 4096; // wide characters

// Every input kind of the platform, touch and pointer too; which of them QS_ALLINPUT contains
// depends on the version that the headers are asked for.
constexpr DWORD kAllInput = 0x1CFF;

// From the second run on the class is there already, which is no error.
void AnnounceLayerClass() {
    WNDCLASSEXW windowClass = {sizeof(windowClass)};
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = obcore::OwnModule();
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
    windowClass.lpszClassName = kLayerClass;
    RegisterClassExW(&windowClass);
}

// The layer window of one run. It has no layered attributes, so it never paints: it only owns the
// host's dialog, and as a popup of the browser's window it stays above that. The system destroys
// the layer with the browser's window; its handle may then be that of another window.
class Layer {
public:
    Layer(HWND root, HWND owner) : window_(Create(root, owner)) {
        if (window_) SetWindowLongPtrW(window_, GWLP_USERDATA, Mark());
    }
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;
    ~Layer() {
        if (window_ && IsStillTheLayer()) DestroyWindow(window_);
    }

    HWND Window() const { return window_; } // null when it couldn't be made

private:
    static HWND Create(HWND root, HWND owner) {
        AnnounceLayerClass();
        RECT place = {};
        GetWindowRect(root, &place);
        return CreateWindowExW(WS_EX_LAYERED | WS_EX_TRANSPARENT, kLayerClass, L"",
                               WS_POPUP | WS_VISIBLE, place.left, place.top,
                               place.right - place.left, place.bottom - place.top, owner, nullptr,
                               obcore::OwnModule(), nullptr);
    }

    // Differs between the layers that are alive at one time.
    LONG_PTR Mark() const { return reinterpret_cast<LONG_PTR>(this); }

    bool IsStillTheLayer() const {
        return GetWindowThreadProcessId(window_, nullptr) == GetCurrentThreadId() &&
               GetWindowLongPtrW(window_, GWLP_USERDATA) == Mark();
    }

    HWND window_;
};

std::wstring HostCommandLine(const std::wstring& host, std::uint32_t id, HWND owner) {
    wchar_t line[kCommandLineCapacity];
    _snwprintf(line, kCommandLineCapacity, L"\"%ls\" %d %lld", host.c_str(), static_cast<int>(id),
               static_cast<long long>(reinterpret_cast<INT_PTR>(owner)));
    return line;
}

// Handles are inherited. Empty when the process can't be made.
ObLib::UniqueKernelHandle StartHost(std::uint32_t id, HWND owner) {
    const auto host = obcore::PathBesideOwnModule(kHostFileName);
    if (!host) return {};
    std::wstring commandLine = HostCommandLine(*host, id, owner);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION info = {};
    if (!CreateProcessW(host->c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        nullptr, &startup, &info))
        return {};
    const ObLib::UniqueKernelHandle thread(info.hThread);
    return ObLib::UniqueKernelHandle(info.hProcess);
}

void DrainQueue(std::optional<int>& quit) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) quit = static_cast<int>(message.wParam);
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

} // namespace

std::uint32_t ShowWithLayer(std::uint32_t id, HWND owner) {
    const HWND root = GetAncestor(owner, GA_ROOT);
    const Layer layer(root, owner);
    if (!layer.Window()) return LaunchHost(id, owner);
    EnableWindow(root, FALSE);
    // Enabled before the layer is destroyed: destroying a window whose owner is disabled gives the
    // foreground to another program.
    const ObLib::ScopeExit enable([root] { EnableWindow(root, TRUE); });
    return LaunchHost(id, layer.Window());
}

std::uint32_t LaunchHost(std::uint32_t id, HWND owner) {
    const ObLib::UniqueKernelHandle process = StartHost(id, owner);
    if (!process) return kHostNotStarted;
    PumpUntilSignalled(process.Get());
    DWORD exitCode = kHostNotStarted;
    GetExitCodeProcess(process.Get(), &exitCode);
    return exitCode;
}

void PumpUntilSignalled(HANDLE process) {
    std::optional<int> quit;
    do {
        DrainQueue(quit);
    } while (MsgWaitForMultipleObjectsEx(1, &process, INFINITE, kAllInput, 0) != WAIT_OBJECT_0);
    if (quit) PostQuitMessage(*quit);
}

} // namespace obwmv
