// Opens the settings of one transform, as the product's settings dialogs will do.
//
//   settingsof ID [PICTURE.png]   with PICTURE nobody is asked: the dialog is drawn into that file
//   and
//                                 cancelled
//
// PVXManager64.dll has to be beside this program. Ends with 0 when the dialog was shown.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <thread>

#include "ObLib/Src/Win32/LoadModule.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "contracts/ProviderManager.h"
#include "tests/support/WindowPicture.h"

namespace {

using namespace obcontract;

constexpr auto kTransform = ProviderKind::Transform;

// The entries of the manager that are called here.
struct Manager {
    ObLib::UniqueModule module;
    decltype(ProviderManagerEntries::CreateObExtensionsManager) create = nullptr;
    decltype(ProviderManagerEntries::Init) init = nullptr;
    decltype(ProviderManagerEntries::Deinit) deinit = nullptr;
    decltype(ProviderManagerEntries::DeleteObExtensionsManager) remove = nullptr;
    decltype(ProviderManagerEntries::IsProviderSupport) supports = nullptr;
    decltype(ProviderManagerEntries::ShowProviderOptions) show = nullptr;
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
           Bind(manager, "ShowProviderOptions", manager.show);
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

// Draws the dialog of the thread into a file and cancels it. False when that can't be done.
bool Draw(DWORD thread, const std::wstring& file) {
    constexpr int kLimit = 20000; // milliseconds
    HWND dialog = nullptr;
    for (int waited = 0; waited < kLimit && !dialog; waited += 20, Sleep(20)) {
        dialog = DialogOf(thread);
    }
    if (!dialog) return false;
    const auto picture = obtest::TakeSettledPicture(dialog);
    const bool drawn = picture && obtest::WritePng(*picture, file);
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    return drawn;
}

int Show(const Manager& manager, std::uint32_t id, const wchar_t* picture) {
    constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
    const ProviderManagerHandle handle = manager.create();
    manager.init(handle, kCurrentUser, kProviderManagerKey);
    bool good = manager.supports(handle, id, kTransform) != 0;
    if (good && picture) {
        const DWORD thread = GetCurrentThreadId();
        std::thread artist([&] { good = Draw(thread, picture); });
        manager.show(handle, id, kTransform, nullptr, nullptr);
        artist.join();
    } else if (good) {
        manager.show(handle, id, kTransform, nullptr, nullptr);
    }
    manager.deinit(handle);
    manager.remove(handle);
    return good ? 0 : 1;
}

} // namespace

int wmain(int count, wchar_t** words) {
    const auto id = count > 1 ? static_cast<std::uint32_t>(std::wcstoul(words[1], nullptr, 10)) : 0;
    Manager manager;
    if (id == 0 || !Load(manager)) {
        std::printf("settingsof: no id, or no provider manager beside this program\n");
        return 2;
    }
    const int result = Show(manager, id, count > 2 ? words[2] : nullptr);
    if (result != 0) std::printf("settingsof: transform %u has no settings here\n", id);
    return result;
}
