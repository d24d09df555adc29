// The settings window: what it shows of browsers and policies, its commands, its ends.
#include "OBCore/settings/OptionsDialog.h"

#include <gmock/gmock.h>
#include <shellapi.h>

#include <algorithm>
#include <map>
#include <optional>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"
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

TEST_F(OptionsDialog, HasTheButtonOfAFirefoxOf32Bits) {
    obtest::SeparateViews::Add(L"firefox.exe", MakeProgramOf32Bits(folder_, L"32.exe"), 32);
    EXPECT_EQ((Ids{kChrome, kEdge}), DisabledBrowsers());
}

// Where the window and its controls are, in pixels of the screen; a control below the row of
// Firefox moves with it.
struct Places {
    explicit Places(const OpenDialog& dialog) : window(PlaceOf(dialog.window)) {
        for (const int id : {kChrome, 1003, 1006, kOk, IDCANCEL}) {
            places[id] = PlaceOf(dialog.Item(id));
        }
        row = PlaceOf(dialog.Item(kFirefox)).top - window.top;
    }
    static RECT PlaceOf(HWND window) {
        RECT place{};
        GetWindowRect(window, &place);
        return place;
    }
    LONG Height() const { return window.bottom - window.top; }
    LONG TopOf(int id) const { return places.at(id).top - window.top; }
    LONG BelowOf(int id) const { return window.bottom - places.at(id).bottom; }

    RECT window{};
    std::map<int, RECT> places;
    LONG row = 0;
};

TEST_F(OptionsDialog, LosesTheButtonOfAFirefoxThatTakesNoExtension) {
    std::optional<Places> before;
    Show([&](const OpenDialog& dialog) { before.emplace(dialog); });
    InstallFirefox(121);
    Show([&](const OpenDialog& dialog) {
        EXPECT_FALSE(IsWindowVisible(dialog.Item(kFirefox)));
        EXPECT_TRUE(dialog.IsEnabled(kHeadline));
        const Places now(dialog);
        const LONG gone = before->Height() - now.Height();
        EXPECT_LT(0, gone);
        EXPECT_EQ(now.window.right - now.window.left, before->window.right - before->window.left);
        EXPECT_EQ(before->TopOf(kChrome), now.TopOf(kChrome));
        EXPECT_EQ(before->row, std::min(now.TopOf(1003), now.TopOf(1006)))
            << "the next row takes the place of the one that went";
        for (const int id : {1003, 1006, kOk, IDCANCEL}) {
            EXPECT_EQ(before->TopOf(id) - gone, now.TopOf(id)) << id;
            EXPECT_EQ(before->BelowOf(id), now.BelowOf(id)) << id;
        }
    });
}

TEST_F(OptionsDialog, IsCentredAfterTheRowOfFirefoxHasGone) {
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const LONG middle = (work.top + work.bottom) / 2;
    const auto isInTheMiddle = [&](const OpenDialog& dialog) {
        const RECT place = Places::PlaceOf(dialog.window);
        EXPECT_NEAR(middle, (place.top + place.bottom) / 2, 1);
    };
    Show(isInTheMiddle);
    InstallFirefox(121);
    Show(isInTheMiddle);
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

Lines starts;

HINSTANCE WINAPI RecordStart(HWND window, const wchar_t*, const wchar_t* file, const wchar_t*,
                             const wchar_t*, INT) {
    starts.push_back(std::to_wstring(reinterpret_cast<INT_PTR>(window)) + L" " + file);
    return reinterpret_cast<HINSTANCE>(INT_PTR{42}); // it worked
}

TEST_F(OptionsDialog, AddsTheExtensionByAPressOfABrowsersButton) {
    const obtest::ImportPatch<decltype(&ShellExecuteW)> start("shell32.dll", "ShellExecuteW",
                                                              &RecordStart);
    ASSERT_TRUE(start.Ok());
    for (const wchar_t* const name : {L"chrome.exe", L"msedge.exe"}) Install(name);
    InstallFirefox(120);
    starts.clear();
    Lines wanted;
    Show([&](const OpenDialog& dialog) {
        const std::wstring owner = std::to_wstring(reinterpret_cast<INT_PTR>(dialog.window)) + L" ";
        wanted = {owner + L"chrome.exe", owner + L"msedge.exe", owner + L"firefox.exe"};
        for (const int id : {kChrome, kEdge, kFirefox}) dialog.Press(id);
    });
    EXPECT_EQ(wanted, starts);
}

TEST_F(OptionsDialog, WarnsOverItselfAboutABrowserOf32Bits) {
    const obtest::ImportPatch<decltype(&ShellExecuteW)> start("shell32.dll", "ShellExecuteW",
                                                              &RecordStart);
    ASSERT_TRUE(start.Ok());
    obtest::SeparateViews::Add(L"firefox.exe", MakeProgramOf32Bits(folder_, L"32.exe"), 32);
    starts.clear();
    Show([&](const OpenDialog& dialog) {
        PostMessageW(dialog.Item(kFirefox), BM_CLICK, 0, 0);
        EXPECT_EQ(obcore::LoadText(obcore::TextId{162}), obtest::CloseBoxOf(dialog.window).text);
    });
    EXPECT_EQ(Lines(), starts);
}

// The dialogs that the window opens, each known by its template.
struct PageCase {
    int command;
    int pageTemplate;
};

class OptionsPages : public OptionsDialog, public testing::WithParamInterface<PageCase> {};

INSTANTIATE_TEST_SUITE_P(All, OptionsPages,
                         testing::Values(PageCase{1000, OB_CONFIGURE_CLOUD},
                                         PageCase{1001, OB_ATTACHMENT},
                                         PageCase{1003, OB_UPDATE_CHECK}, PageCase{1006, OB_ABOUT}),
                         [](const auto& info) {
                             return "Of" + std::to_string(info.param.command);
                         });

// Ids of the templates that were looked for.
std::vector<int> templates;
decltype(&FindResourceW) realFind = nullptr;

HRSRC WINAPI RecordTemplate(HMODULE module, const wchar_t* name, const wchar_t* type) {
    if (type == RT_DIALOG) templates.push_back(static_cast<int>(reinterpret_cast<INT_PTR>(name)));
    return realFind(module, name, type);
}

TEST_P(OptionsPages, AreOpenedOverTheWindowByTheirCommand) {
    const obtest::ImportPatch<decltype(&FindResourceW)> find("kernel32.dll", "FindResourceW",
                                                             &RecordTemplate);
    ASSERT_TRUE(find.Ok());
    realFind = find.Real();
    Show([&](const OpenDialog& dialog) {
        templates.clear();
        PostMessageW(dialog.window, WM_COMMAND, static_cast<WPARAM>(GetParam().command), 0);
        const auto isPage = [&](HWND window) {
            return obtest::IsDialog(window) && GetWindow(window, GW_OWNER) == dialog.window;
        };
        const HWND page = obtest::WaitForTopWindow(isPage, GetCurrentProcessId());
        ASSERT_NE(nullptr, page);
        EXPECT_FALSE(IsWindowEnabled(dialog.window));
        ASSERT_FALSE(templates.empty());
        EXPECT_THAT(templates, testing::Each(GetParam().pageTemplate));
        PostMessageW(page, WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(obtest::WaitUntilClosed(page));
        EXPECT_TRUE(obtest::WaitUntil([&] { return IsWindowEnabled(dialog.window) != FALSE; }));
    });
}

} // namespace
