#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

#include <commctrl.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/ObConfigureCloudServiceDialog.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"

namespace obtest {
namespace {

constexpr DWORD kGrace = 5000; // milliseconds that an ended dialog has to close

// The hive as the manager takes it.
constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));

constexpr int kAccountButtons[] = {OB_CLOUD_LOGIN, OB_CLOUD_LOGOUT, OB_CLOUD_SET_DEFAULT,
                                   OB_CLOUD_ADD_ACCOUNT, OB_CLOUD_MANAGE};

// The process's first question walks the providers, which no test wants among its calls.
void AskOnceForCloudServices(obcore::OBOptions options) {
    FakeModules::Answer(L"Providers", L"7");
    options.CloudServicesUnavailable();
}

} // namespace

Lines RowsOf(HWND list) {
    Lines rows;
    const int count = ListView_GetItemCount(list);
    for (int row = 0; row < count; ++row) {
        wchar_t text[512] = L"";
        ListView_GetItemText(list, row, 0, text, 512);
        rows.emplace_back(text);
    }
    return rows;
}

int SelectedRowOf(HWND list) { return ListView_GetNextItem(list, -1, LVNI_SELECTED); }

obcontract::ProviderProfile* ProfileOfRowIn(HWND list, int row) {
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    ListView_GetItem(list, &item);
    return reinterpret_cast<obcontract::ProviderProfile*>(item.lParam);
}

std::wstring ManyAccounts(int count) {
    std::wstring accounts;
    for (int number = 0; number < count; ++number) {
        const std::wstring text = std::to_wstring(number);
        accounts += (number ? L";label " : L"label ") + text + L"|key" + text;
    }
    return accounts;
}

HWND FindCloudSettings() {
    return FindTopWindow(
        [](HWND window) {
            return IsDialog(window) && GetDlgItem(window, OB_CLOUD_ACCOUNTS) != nullptr;
        },
        GetCurrentProcessId());
}

CloudSettings::CloudSettings(HWND window)
    : dialog(window), list(GetDlgItem(window, OB_CLOUD_ACCOUNTS)) {}

bool CloudSettings::IsChecked(int id) const {
    return SendMessageW(Item(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

std::vector<int> CloudSettings::Buttons() const {
    std::vector<int> enabled;
    for (const int id : kAccountButtons) {
        if (IsEnabled(id)) enabled.push_back(id);
    }
    return enabled;
}

void CloudSettings::Select(int row) const {
    ListView_SetItemState(list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

void CloudSettings::Unselect() const { ListView_SetItemState(list, -1, 0, LVIS_SELECTED); }

void CloudSettings::DoubleClick(int row) const {
    RECT label{};
    ListView_GetItemRect(list, row, &label, LVIR_LABEL);
    const LPARAM place = MAKELPARAM(label.left + 8, (label.top + label.bottom) / 2);
    // The list waits for the button to come up again.
    PostMessageW(list, WM_LBUTTONUP, 0, place);
    SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, place);
    PostMessageW(list, WM_LBUTTONUP, 0, place);
    SendMessageW(list, WM_LBUTTONDBLCLK, MK_LBUTTON, place);
}

void CloudSettings::Command(int id, int code) const {
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(Item(id)));
}

void CloudSettings::SetField(int id, const std::wstring& text) const { SetText(Item(id), text); }

HWND CloudSettings::Focus() const {
    GUITHREADINFO thread{sizeof thread};
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &thread);
    return thread.hwndFocus;
}

void CloudSettings::SetFocusTo(int id) const {
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(id)), TRUE);
}

void CloudFixture::SetUpTestSuite() {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS |
                                                           ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    ASSERT_TRUE(obcore::LoadProviderManager());
    ASSERT_TRUE(obcore::BindResourceModule());
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    ObLibX::UseFlatControls();
}

CloudFixture::CloudFixture()
    : owner_(CreateWindowExW(0, L"Static", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100,
                             100, nullptr, nullptr, nullptr, nullptr)),
      manager_(obcore::ProviderManager().CreateObExtensionsManager()), context_{&options_} {
    options_.ProviderManager = manager_;
    options_.ExpireFilesAvailable = true;
}

CloudFixture::~CloudFixture() {
    obcore::ProviderManager().Deinit(manager_);
    obcore::ProviderManager().DeleteObExtensionsManager(manager_);
}

void CloudFixture::SetUp() {
    FakeModules::Reset();
    obcore::ProviderManager().Init(manager_, kCurrentUser, obcontract::kProviderManagerKey);
    AskOnceForCloudServices(options_);
    FakeModules::Reset();
}

void CloudFixture::OneProvider(const std::wstring& accounts, bool loggedIn) {
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetShortDescription", L"Shelf");
    Answer(L"provider7.GetAccountProfiles", accounts);
    Answer(L"IsAuthorized2", loggedIn ? L"1" : L"0");
}

int CloudFixture::Show(const std::function<void(const CloudSettings&)>& use) {
    WindowDriver driver(
        &FindCloudSettings, [&use](HWND dialog) { use(CloudSettings(dialog)); }, kGrace);
    obcore::OBConfigureCloudDialogImp dialog(owner_.Get(), context_);
    const int result = dialog.DoModal();
    EXPECT_TRUE(driver.SawWindow());
    return result;
}

void CloudFixture::Use(const std::function<void(const CloudSettings&)>& use) {
    EXPECT_EQ(Show([&use](const CloudSettings& settings) {
                  use(settings);
                  settings.Cancel();
              }),
              IDCANCEL);
}

} // namespace obtest
