#include "OBCore/settings/Browsers.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

using ObLib::RegistryView;

namespace obcore {
namespace {

constexpr wchar_t kAppPaths[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
constexpr DWORD kMostBytes = 2080;
constexpr std::uint32_t kFirstWithoutExtension = 121; // major version of Firefox
constexpr DWORD k32BitProgram = 0;
constexpr DWORD k64BitProgram = 6;

struct AppPath {
    std::wstring path;
    DWORD type = REG_NONE;
};

// The default value as a text up to its first NUL, which it may lack. Nothing when it is absent,
// empty or longer than kMostBytes.
std::optional<AppPath> ReadAppPath(const wchar_t* executable, RegistryView view) {
    const auto key = ObLib::OpenRegistryKey(
        HKEY_LOCAL_MACHINE, (std::wstring(kAppPaths) + executable).c_str(), KEY_QUERY_VALUE, view);
    std::array<wchar_t, kMostBytes / sizeof(wchar_t) + 1> text{}; // and a NUL
    DWORD bytes = kMostBytes;
    AppPath found;
    if (!key || RegQueryValueExW(key.Get(), nullptr, nullptr, &found.type,
                                 reinterpret_cast<BYTE*>(text.data()), &bytes) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    found.path = text.data();
    if (found.path.empty()) return std::nullopt;
    return found;
}

// Empty when the system can't do it.
std::wstring Expanded(const std::wstring& text) {
    const DWORD capacity = ExpandEnvironmentStringsW(text.c_str(), nullptr, 0);
    std::wstring expanded(capacity, L'\0');
    const DWORD size = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), capacity);
    return size == 0 || size > capacity ? std::wstring() : expanded.substr(0, size - 1);
}

bool IsProgramOf(RegistryView view, const std::wstring& path) {
    DWORD type = 0;
    if (!GetBinaryTypeW(path.c_str(), &type)) return false;
    return type == (view == RegistryView::Bits32 ? k32BitProgram : k64BitProgram);
}

// The product version of the file's fixed version block.
void ReadVersion(const std::wstring& path, FirefoxInfo& info) {
    const DWORD bytes = GetFileVersionInfoSizeW(path.c_str(), nullptr);
    std::vector<std::byte> block(bytes);
    void* fixed = nullptr;
    UINT size = 0;
    if (bytes == 0 || !GetFileVersionInfoW(path.c_str(), 0, bytes, block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &fixed, &size) || size < sizeof(VS_FIXEDFILEINFO)) {
        return;
    }
    const auto& version = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
    info.major = HIWORD(version.dwProductVersionMS);
    info.minor = LOWORD(version.dwProductVersionMS);
    info.build = HIWORD(version.dwProductVersionLS);
}

// GetNativeSystemInfo is looked up: not every system that has this library's other calls has it.
bool Is64BitSystem() {
    using GetInfo = void WINAPI(SYSTEM_INFO*);
    auto* const native = reinterpret_cast<GetInfo*>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetNativeSystemInfo")));
    SYSTEM_INFO info{};
    (native ? native : &GetSystemInfo)(&info);
    return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64 ||
           info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_IA64;
}

bool IsInAnyView(const wchar_t* executable, bool has64Bits) {
    return IsBrowserInstalled(executable, RegistryView::Bits32) ||
           (has64Bits && IsBrowserInstalled(executable, RegistryView::Bits64));
}

bool TakesExtension(const FirefoxInfo& firefox) {
    return firefox.found && firefox.major < kFirstWithoutExtension;
}

} // namespace

bool IsBrowserInstalled(const wchar_t* executable, RegistryView view) {
    const auto appPath = ReadAppPath(executable, view);
    return appPath && IsProgramOf(view, appPath->path);
}

FirefoxInfo GetFirefoxInfo(RegistryView view) {
    FirefoxInfo info;
    const auto appPath = ReadAppPath(kFirefox, view);
    if (!appPath) return info;
    const std::wstring path =
        appPath->type == REG_EXPAND_SZ ? Expanded(appPath->path) : appPath->path;
    info.found = IsProgramOf(view, path);
    if (info.found) ReadVersion(path, info);
    return info;
}

InstalledBrowsers FindBrowsers() {
    const bool has64Bits = Is64BitSystem();
    FirefoxInfo firefox = GetFirefoxInfo(RegistryView::Bits32);
    if (!TakesExtension(firefox)) {
        firefox = has64Bits ? GetFirefoxInfo(RegistryView::Bits64) : FirefoxInfo();
    }
    return {IsInAnyView(kChrome, has64Bits), IsInAnyView(kEdge, has64Bits), firefox.found,
            TakesExtension(firefox)};
}

} // namespace obcore
