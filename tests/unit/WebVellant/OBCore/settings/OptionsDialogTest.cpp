// The settings window: what it shows of browsers and policies, its commands, its ends.
#include "OBCore/settings/OptionsDialog.h"

#include "ObLibX/src/controls/ObHyperlink.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::Lines;
using obtest::OpenDialog;
using obtest::ProgramVersion;

using Ids = std::vector<int>;

constexpr int kOk = 8;
constexpr int kHeadline = 1053;
constexpr int kChrome = 1046;
constexpr int kEdge = 1042;
constexpr int kFirefox = 1043;
const Ids kBrowsers{kHeadline, kChrome, kEdge, kFirefox};

// All programs are of 64 bits here.
class OptionsDialog : public obtest::OptionsFixture {
protected:
    void InstallFirefox(WORD major) const {
        const ProgramVersion version{major, 0, 0};
        obtest::SeparateViews::Add(
            L"firefox.exe", MakeProgram(folder_, std::to_wstring(major) + L".exe", &version), 64);
    }
    void Install(const wchar_t* executable) const {
        obtest::SeparateViews::Add(executable, MakeProgram(folder_, L"browser.exe"), 64);
    }
    Ids DisabledBrowsers() {
        Ids disabled;
        Show([&](const OpenDialog& dialog) { disabled = dialog.Disabled(kBrowsers); });
        return disabled;
    }

    obtest::TestFolder folder_;
};

TEST_F(OptionsDialog, DisablesABrowserThatIsNotThere) {
    EXPECT_EQ(kBrowsers, DisabledBrowsers());
    Install(L"chrome.exe");
    EXPECT_EQ((Ids{kHeadline, kEdge, kFirefox}), DisabledBrowsers())
        << "the headline takes no notice of Chrome";
    Install(L"msedge.exe");
    EXPECT_EQ(Ids{kFirefox}, DisabledBrowsers());
    obtest::SeparateViews::Clear();
    InstallFirefox(120);
    EXPECT_EQ((Ids{kChrome, kEdge}), DisabledBrowsers());
}

TEST_F(OptionsDialog, LosesTheButtonOfAFirefoxThatTakesNoExtension) {
    RECT before{};
    Show([&](const OpenDialog& dialog) { GetWindowRect(dialog.window, &before); });
    InstallFirefox(121);
    Show([&](const OpenDialog& dialog) {
        EXPECT_FALSE(IsWindowVisible(dialog.Item(kFirefox)));
        EXPECT_TRUE(dialog.IsEnabled(kHeadline));
        RECT now{};
        GetWindowRect(dialog.window, &now);
        EXPECT_LT(now.bottom - now.top, before.bottom - before.top);
        EXPECT_EQ(now.right - now.left, before.right - before.left);
    });
}

TEST_F(OptionsDialog, KeepsTheButtonOfAFirefoxThatIsNotThere) {
    Show([&](const OpenDialog& dialog) {
        EXPECT_TRUE(IsWindowVisible(dialog.Item(kFirefox)));
        EXPECT_FALSE(dialog.IsEnabled(kFirefox));
    });
}

TEST_F(OptionsDialog, DisablesTheBrowserGroupByPolicyAndDoesNothingElse) {
    for (const wchar_t* const name : {L"chrome.exe", L"msedge.exe"}) Install(name);
    InstallFirefox(121);
    options_.DisableWebVellant = true;
    Show([&](const OpenDialog& dialog) {
        EXPECT_EQ(kBrowsers, dialog.Disabled(kBrowsers));
        EXPECT_TRUE(IsWindowVisible(dialog.Item(kFirefox))) << "it isn't taken away";
        EXPECT_TRUE(dialog.IsEnabled(1001));
    });
}

TEST_F(OptionsDialog, EndsWith1ByItsOkAndWith2ByACancel) {
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) { dialog.Press(kOk); }));
    EXPECT_EQ(2, Show([](const OpenDialog& dialog) { dialog.Press(IDCANCEL); }));
    EXPECT_EQ(2, Show([](const OpenDialog& dialog) {
                  PostMessageW(dialog.window, WM_CLOSE, 0, 0);
                  EXPECT_TRUE(obtest::WaitUntilClosed(dialog.window));
              }));
}

TEST_F(OptionsDialog, TakesEscForACancelAndEnterForItsOk) {
    const auto type = [](WPARAM key) {
        return [key](const OpenDialog& dialog) {
            const HWND box = dialog.Item(OB_OPTIONS_RESIZE_IMAGES);
            PostMessageW(box, WM_KEYDOWN, key, 1);
            EXPECT_TRUE(obtest::WaitUntilClosed(dialog.window));
        };
    };
    EXPECT_EQ(2, Show(type(VK_ESCAPE)));
    EXPECT_EQ(1, Show(type(VK_RETURN)));
}

TEST_F(OptionsDialog, ReturnsForEachCommandWhetherItIsItsOwn) {
    struct Probe : obcore::OBOptionsDialogImp {
        using OBOptionsDialogImp::OBOptionsDialogImp;
        bool OnInitDialog() override {
            OBOptionsDialogImp::OnInitDialog();
            for (const int id : {0, 3, 1002, 1007, 1053, 1060}) {
                EXPECT_FALSE(OnCommandId(id, 0, nullptr)) << id;
            }
            EXPECT_TRUE(OnCommandId(1012, 0, nullptr));
            EXPECT_TRUE(OnCommandId(2, 0, nullptr));
            return true;
        }
    };
    Probe probe(OB_OPTIONS, nullptr, options_);
    EXPECT_EQ(2, probe.DoModal());
}

TEST_F(OptionsDialog, HasTheProductsIcon) {
    Show([](const OpenDialog& dialog) {
        for (const WPARAM kind : {ICON_SMALL, ICON_BIG}) {
            EXPECT_NE(0, SendMessageW(dialog.window, WM_GETICON, kind, 0)) << kind;
        }
    });
}

// The dialogs that the window opens, each found by a control of its own and closed at once.
struct PageCase {
    int command;
    int control;
};

class OptionsPages : public OptionsDialog, public testing::WithParamInterface<PageCase> {};

INSTANTIATE_TEST_SUITE_P(All, OptionsPages,
                         testing::Values(PageCase{1000, 1207},  // cloud
                                         PageCase{1001, 1021},  // attachments
                                         PageCase{1003, 1004},  // updates
                                         PageCase{1006, 1001}), // about
                         [](const auto& info) {
                             return "Of" + std::to_string(info.param.command);
                         });

TEST_P(OptionsPages, AreOpenedOverTheWindowByTheirCommand) {
    Show([&](const OpenDialog& dialog) {
        PostMessageW(dialog.window, WM_COMMAND, static_cast<WPARAM>(GetParam().command), 0);
        const auto isPage = [&](HWND window) {
            return GetWindow(window, GW_OWNER) == dialog.window &&
                   GetDlgItem(window, GetParam().control) != nullptr;
        };
        const HWND page = obtest::WaitForTopWindow(isPage, GetCurrentProcessId());
        ASSERT_NE(nullptr, page);
        EXPECT_FALSE(IsWindowEnabled(dialog.window));
        PostMessageW(page, WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(obtest::WaitUntilClosed(page));
        EXPECT_TRUE(obtest::WaitUntil([&] { return IsWindowEnabled(dialog.window) != FALSE; }));
    });
}

} // namespace
