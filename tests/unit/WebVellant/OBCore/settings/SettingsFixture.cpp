#include "tests/unit/WebVellant/OBCore/settings/SettingsFixture.h"

#include <commctrl.h>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"

namespace obtest {
namespace {

constexpr int kMessageTextId = 0xFFFF; // of a message box

// Those of `ids` for which `is` is true.
template <class Predicate>
std::vector<int> Which(const std::vector<int>& ids, Predicate is) {
    std::vector<int> chosen;
    for (const int id : ids) {
        if (is(id)) chosen.push_back(id);
    }
    return chosen;
}

// A dialog and a control's id of it, as the windows of the process are searched for their tip.
struct WantedTip {
    HWND dialog;
    int id;
    bool isThere;
};

BOOL CALLBACK LookForTip(HWND window, LPARAM wanted) {
    auto& tip = *reinterpret_cast<WantedTip*>(wanted);
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.hwnd = tip.dialog;
    tool.uId = static_cast<UINT_PTR>(tip.id);
    tip.isThere = ClassOf(window) == TOOLTIPS_CLASSW &&
                  SendMessageW(window, TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(&tool));
    return !tip.isThere;
}

bool HasTip(HWND dialog, int id) {
    WantedTip tip{dialog, id, false};
    EnumThreadWindows(GetWindowThreadProcessId(dialog, nullptr), &LookForTip,
                      reinterpret_cast<LPARAM>(&tip));
    return tip.isThere;
}

} // namespace

obcore::OBOptions PlainOptions() {
    obcore::OBOptions options;
    options.AllowedEncryptMethods = 12;
    return options;
}

HWND FindDialogWith(int id) {
    return FindTopWindow(
        [id](HWND window) { return IsDialog(window) && GetDlgItem(window, id) != nullptr; },
        GetCurrentProcessId());
}

bool IsBold(HWND window) {
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0));
    LOGFONTW face{};
    return GetObjectW(font, sizeof face, &face) != 0 && face.lfWeight == FW_BOLD;
}

bool IsTabStop(HWND window) { return (GetWindowLongPtrW(window, GWL_STYLE) & WS_TABSTOP) != 0; }

std::vector<int> OpenDialog::Checked(const std::vector<int>& ids) const {
    return Which(ids, [this](int id) { return IsChecked(id); });
}

std::vector<int> OpenDialog::Disabled(const std::vector<int>& ids) const {
    return Which(ids, [this](int id) { return !IsEnabled(id); });
}

std::vector<int> OpenDialog::Hinted(const std::vector<int>& ids) const {
    return Which(ids, [this](int id) { return HasTip(window, id); });
}

void OpenDialog::Select(int id, int row) const {
    SendMessageW(Item(id), CB_SETCURSEL, static_cast<WPARAM>(row), 0);
    Notify(id, CBN_SELCHANGE);
}

void OpenDialog::Notify(int id, int code) const {
    SendMessageW(window, WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(Item(id)));
}

SeenBox CloseBoxOf(HWND owner) {
    const HWND box = WaitForTopWindow(
        [owner](HWND window) { return IsDialog(window) && GetWindow(window, GW_OWNER) == owner; },
        GetCurrentProcessId());
    SeenBox seen{TextOf(box), ItemText(box, kMessageTextId)};
    seen.owner = owner;
    seen.hasIcon = FindDescendant(box, [](HWND child) {
                       return ClassOf(child) == L"Static" &&
                              (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON &&
                              SendMessageW(child, STM_GETICON, 0, 0) != 0;
                   }) != nullptr;
    PressCommand(box, IDCANCEL);
    WaitUntilClosed(box);
    return seen;
}

void SettingsFixture::SetUp() {
    ClearProductRegistry();
    FakeModules::Reset();
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    ASSERT_TRUE(obcore::LoadArchiveService());
    ASSERT_TRUE(obcore::BindResourceModule());
    ObLibX::UseFlatControls();
}

void SettingsFixture::TearDown() { ObLib::AppGlobals().Clear(); }

INT_PTR SettingsFixture::Operate(int id, const std::function<INT_PTR()>& show,
                                 const std::function<void(const OpenDialog&)>& use) {
    WindowDriver driver([id] { return FindDialogWith(id); },
                        [&use](HWND window) {
                            const OpenDialog dialog{window};
                            use(dialog);
                            if (IsOpen(window)) dialog.Cancel();
                        },
                        WindowDriver::kLeaveOpen);
    const INT_PTR result = show();
    EXPECT_TRUE(driver.SawWindow());
    return result;
}

obcore::OBOptions SettingsFixture::Loaded() {
    obcore::OBOptions options;
    options.Load();
    return options;
}

} // namespace obtest
