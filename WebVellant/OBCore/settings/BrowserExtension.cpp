#include "OBCore/settings/BrowserExtension.h"

#include <shellapi.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/OwnModule.h"
#include "OBCore/settings/Browsers.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "OBCore/settings/StoreAddress.h"
#include "ObLib/Src/Win32/ModulePath.h"

namespace obcore {
namespace {

constexpr wchar_t kExtensionFile[] = L"FFExt.xpi";

std::optional<std::wstring> StorePage() { return kExtensionPage; }

// In double quotes. Nothing when the folder of the running program can't be had.
std::optional<std::wstring> ExtensionFile() {
    const auto folder = ObLib::ModuleFolder(nullptr, kPathCapacity);
    if (!folder) return std::nullopt;
    return L"\"" + *folder + kExtensionFile + L"\"";
}

struct BrowserRow {
    int button;
    const wchar_t* executable;
    TextId warning; // for one of 32 bits
    std::optional<std::wstring> (*extension)();
};

constexpr BrowserRow kBrowsers[] = {
    {OB_OPTIONS_CHROME, kChrome, TextId::ChromeOf32Bits, &StorePage},
    {OB_OPTIONS_EDGE, kEdge, TextId::EdgeOf32Bits, &StorePage},
    {OB_OPTIONS_FIREFOX, kFirefox, TextId::FirefoxOf32Bits, &ExtensionFile},
};

void AddExtension(HWND window, const BrowserRow& row) {
    if (IsBrowserInstalled(row.executable, ObLib::RegistryView::Bits32)) {
        ShowStringWarning(window, row.warning);
        return;
    }
    const auto extension = row.extension();
    if (!extension) return;
    ShellExecuteW(window, L"open", row.executable, extension->c_str(), nullptr, SW_SHOW);
}

} // namespace

bool OnBrowserCommand(HWND window, int id) {
    const auto* const row = std::ranges::find(kBrowsers, id, &BrowserRow::button);
    if (row == std::end(kBrowsers)) return false;
    AddExtension(window, *row);
    return true;
}

} // namespace obcore
