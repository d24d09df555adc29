// Opens the settings of one transform, or the page of the newest network folder, as the product's
// settings dialogs will do.
//
//   settingsof ID|account[ID] [PICTURE.png]
//
// With PICTURE nobody is asked: the dialog is drawn into that file and cancelled. ID is that of a
// transform; after "account" that of a storage provider, network folders without one, whose newest
// account is shown. While it has none its login comes before; with PICTURE and the variables
// OB_OCS_URL, OB_SERVER_USER and OB_SERVER_PASSWORD it is the one to that WebDAV server, and the
// account page goes into PICTURE with "-page" in its name.
//
// PVXManager64.dll has to be beside this program. Ends with 0 when the dialog was shown.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <string>
#include <string_view>
#include <thread>

#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "contracts/ProviderManager.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "tests/support/WindowKit.h"
#include "tests/support/WindowPicture.h"

namespace {

using namespace obcontract;

constexpr auto kTransform = ProviderKind::Transform;
constexpr std::uint32_t kNetworkFolder = 101;

// The entries of the manager that are called here.
struct Manager {
    ObLib::UniqueModule module;
    decltype(ProviderManagerEntries::CreateObExtensionsManager) create = nullptr;
    decltype(ProviderManagerEntries::Init) init = nullptr;
    decltype(ProviderManagerEntries::Deinit) deinit = nullptr;
    decltype(ProviderManagerEntries::DeleteObExtensionsManager) remove = nullptr;
    decltype(ProviderManagerEntries::IsProviderSupport) supports = nullptr;
    decltype(ProviderManagerEntries::ShowProviderOptions) show = nullptr;
    decltype(ProviderManagerEntries::GetProviderInstance) instance = nullptr;
    decltype(ProviderManagerEntries::Login2) logIn = nullptr;
};

template <class Entry>
bool Bind(const Manager& manager, const char* name, Entry& entry) {
    entry = reinterpret_cast<Entry>(
        reinterpret_cast<void*>(GetProcAddress(manager.module.Get(), name)));
    return entry != nullptr;
}

bool Load(Manager& manager) {
    const auto path = ObLib::PathBesideModule(nullptr, kProviderManagerFileName);
    if (!path) return false;
    manager.module = ObLib::LoadModule(path->c_str());
    return manager.module && Bind(manager, "CreateObExtensionsManager", manager.create) &&
           Bind(manager, "Init", manager.init) && Bind(manager, "Deinit", manager.deinit) &&
           Bind(manager, "DeleteObExtensionsManager", manager.remove) &&
           Bind(manager, "IsProviderSupport", manager.supports) &&
           Bind(manager, "ShowProviderOptions", manager.show) &&
           Bind(manager, "GetProviderInstance", manager.instance) &&
           Bind(manager, "Login2", manager.logIn);
}

// The dialog of this thread; null while there is none.
HWND DialogOf(DWORD thread) {
    HWND found = nullptr;
    EnumThreadWindows(
        thread,
        [](HWND window, LPARAM parameter) -> BOOL {
            wchar_t name[16] = L"";
            GetClassNameW(window, name, 16);
            const bool is = IsWindowVisible(window) && std::wcscmp(name, L"#32770") == 0;
            if (is) *reinterpret_cast<HWND*>(parameter) = window;
            return !is;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

std::wstring Variable(const wchar_t* name) {
    wchar_t value[512] = L"";
    return GetEnvironmentVariableW(name, value, 512) < 512 ? value : L"";
}

// Whether the dialog is a login that can be filled in, which it is then.
bool FillIn(HWND dialog) {
    if (!GetDlgItem(dialog, OB_DAV_ADDRESS) || Variable(L"OB_OCS_URL").empty()) return false;
    obtest::SetText(GetDlgItem(dialog, OB_DAV_ADDRESS), Variable(L"OB_OCS_URL"));
    obtest::SetText(GetDlgItem(dialog, OB_DAV_USER), Variable(L"OB_SERVER_USER"));
    obtest::SetText(GetDlgItem(dialog, OB_DAV_PASSWORD), Variable(L"OB_SERVER_PASSWORD"));
    return true;
}

// Ends the dialog; false when a login wasn't one.
bool End(HWND dialog, bool isFilledIn) {
    const bool good =
        !isFilledIn || (obtest::PressCommand(dialog, IDOK) && obtest::WaitUntilClosed(dialog));
    if (!isFilledIn || !good) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    return good;
}

// Draws the dialog of the thread into a file and ends it: a login that can be filled in with OK,
// any other by cancelling. False when that can't be done.
bool Draw(DWORD thread, const std::wstring& file) {
    constexpr int kLimit = 20000; // milliseconds
    HWND dialog = nullptr;
    for (int waited = 0; waited < kLimit && !dialog; waited += 20, Sleep(20)) {
        dialog = DialogOf(thread);
    }
    if (!dialog) return false;
    const bool isFilledIn = FillIn(dialog);
    const auto picture = obtest::TakeSettledPicture(dialog);
    const bool drawn = picture && obtest::WritePng(*picture, file);
    return End(dialog, isFilledIn) && drawn;
}

// Runs a call that shows a dialog, which nobody is asked in when there is a picture to draw.
template <class Call>
bool Shown(const wchar_t* picture, Call call) {
    bool good = true;
    const DWORD thread = GetCurrentThreadId();
    std::thread artist([&] { good = !picture || Draw(thread, picture); });
    call();
    artist.join();
    return good;
}

bool ShowSettings(const Manager& manager, ProviderManagerHandle handle, std::uint32_t id,
                  const wchar_t* picture) {
    return manager.supports(handle, id, kTransform) &&
           Shown(picture, [&] { manager.show(handle, id, kTransform, nullptr, nullptr); });
}

// What the contract has at a slot of a provider.
template <class Function>
Function SlotOf(const CloudProvider& provider, std::size_t slot) {
    return reinterpret_cast<Function>(provider.table[slot]);
}

std::wstring PagePicture(const std::wstring& picture) {
    std::wstring file = picture;
    return file.insert(std::min(file.rfind(L'.'), file.size()), L"-page");
}

bool ShowAccount(const Manager& manager, ProviderManagerHandle handle, std::uint32_t id,
                 const wchar_t* picture) {
    using GetProfiles = std::int32_t (*)(CloudProvider*, ProviderProfile*, std::uint32_t);
    using Manage = void (*)(CloudProvider*, HWND, const wchar_t*);
    CloudProvider* const provider = manager.instance(handle, id, ProviderKind::Storage);
    if (!provider) return false;
    static ProviderProfile profiles[16];
    const auto getProfiles = SlotOf<GetProfiles>(*provider, 136);
    std::int32_t count = getProfiles(provider, profiles, 16);
    const bool hasNone = count <= 0;
    if (hasNone) {
        const auto logIn = [&] {
            manager.logIn(handle, provider, profiles[0].accountKey, profiles[0].accountLabel,
                          nullptr);
        };
        if (!Shown(picture, logIn)) return false;
        count = getProfiles(provider, profiles, 16);
        if (count <= 0) return true; // the login was cancelled
    }
    const std::wstring file = picture ? (hasNone ? PagePicture(picture) : picture) : L"";
    return Shown(picture ? file.c_str() : nullptr, [&] {
        SlotOf<Manage>(*provider, 137)(provider, nullptr, profiles[count - 1].accountKey);
    });
}

int Show(const Manager& manager, const wchar_t* what, const wchar_t* picture) {
    constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
    const ProviderManagerHandle handle = manager.create();
    manager.init(handle, kCurrentUser, kProviderManagerKey);
    constexpr std::wstring_view kAccount = L"account";
    const bool isAccount = std::wstring_view(what).starts_with(kAccount);
    const wchar_t* const number = isAccount ? what + kAccount.size() : what;
    const auto id = static_cast<std::uint32_t>(std::wcstoul(number, nullptr, 10));
    const bool good = isAccount
                          ? ShowAccount(manager, handle, id != 0 ? id : kNetworkFolder, picture)
                          : ShowSettings(manager, handle, id, picture);
    manager.deinit(handle);
    manager.remove(handle);
    return good ? 0 : 1;
}

} // namespace

int wmain(int count, wchar_t** words) {
    Manager manager;
    if (count < 2 || !Load(manager)) {
        std::printf("settingsof: nothing to open, or no provider manager beside this program\n");
        return 2;
    }
    const int result = Show(manager, words[1], count > 2 ? words[2] : nullptr);
    if (result != 0) std::printf("settingsof: %ls has no settings here\n", words[1]);
    return result;
}
