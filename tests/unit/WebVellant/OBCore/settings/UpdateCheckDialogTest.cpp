// The settings of the check for updates.
#include "OBCore/settings/UpdateCheckDialog.h"

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"
#include "tests/unit/WebVellant/OBCore/settings/SettingsFixture.h"

namespace {

using obcore::TextId;
using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;

using Ids = std::vector<int>;

constexpr int kAutomatic = OB_UPDATE_CHECK_AUTOMATIC;
constexpr int kInterval = OB_UPDATE_CHECK_INTERVAL;
constexpr int kNever = OB_UPDATE_CHECK_NEVER;
constexpr int kNow = OB_UPDATE_CHECK_NOW;

const Ids kAll = {kAutomatic, kInterval, kNever, kNow};

// The numbers are fixed, whatever their names.
static_assert(OB_UPDATE_CHECK == 106 && kAutomatic == 1000 && kInterval == 1001);
static_assert(kNever == 1002 && kNow == 1003 && OB_UPDATE_CHECK_HEADLINE == 1004);

class UpdateCheckDialog : public obtest::SettingsFixture {
protected:
    INT_PTR Show(const std::function<void(const OpenDialog&)>& use) {
        return Operate(
            kNow, [this] { return obcore::ShowUpdateCheckDialog(nullptr, options_); }, use);
    }
    static int RowOf(const OpenDialog& dialog) {
        return static_cast<int>(SendMessageW(dialog.Item(kInterval), CB_GETCURSEL, 0, 0));
    }

    obcore::OBOptions options_ = obtest::PlainOptions();
};

TEST_F(UpdateCheckDialog, ShowsTheOptions) {
    const struct {
        bool isEnabled;
        bool isForbidden;
        Ids checked;
        Ids disabled;
    } rows[] = {{true, false, {kAutomatic}, {}},
                {false, false, {kNever}, {kInterval}},
                {false, true, {kNever}, {kAutomatic, kInterval, kNow}},
                {true, true, {kAutomatic}, {kAutomatic, kInterval, kNow}}};
    for (const auto& row : rows) {
        options_.UpdateCheckEnabled = row.isEnabled;
        options_.NoUpdateChecking = row.isForbidden;
        Show([&row](const OpenDialog& dialog) {
            EXPECT_EQ(row.checked, dialog.Checked({kAutomatic, kNever}));
            EXPECT_EQ(row.disabled, dialog.Disabled(kAll));
            // The interval of checks that the user switched off is nobody else's decision.
            EXPECT_EQ(row.isForbidden ? row.disabled : Ids{}, dialog.Hinted(kAll));
            for (const int id : {kAutomatic, kNever}) {
                EXPECT_EQ(dialog.IsChecked(id), obtest::IsTabStop(dialog.Item(id)));
            }
        });
    }
}

TEST_F(UpdateCheckDialog, ListsDailyAndWeekly) {
    const struct {
        std::uint32_t days;
        int row;
    } rows[] = {{1, 0}, {7, 1}, {0, 1}, {365, 1}};
    for (const auto& row : rows) {
        options_.UpdateCheckIntervalDays = row.days;
        Show([&row](const OpenDialog& dialog) {
            ASSERT_EQ(2, SendMessageW(dialog.Item(kInterval), CB_GETCOUNT, 0, 0));
            EXPECT_EQ(row.row, RowOf(dialog)) << row.days;
            for (UINT entry = 0; entry < 2; ++entry) {
                wchar_t text[64] = L"";
                SendMessageW(dialog.Item(kInterval), CB_GETLBTEXT, entry,
                             reinterpret_cast<LPARAM>(text));
                EXPECT_EQ(obcore::LoadText(static_cast<TextId>(115 + entry)), text);
            }
        });
    }
}

TEST_F(UpdateCheckDialog, OffersTheIntervalOfAutomaticChecksOnly) {
    Show([](const OpenDialog& dialog) {
        dialog.Press(kNever);
        EXPECT_EQ(Ids{kInterval}, dialog.Disabled(kAll));
        EXPECT_EQ(Ids{kNever}, dialog.Checked({kAutomatic, kNever}));
        dialog.Press(kAutomatic);
        EXPECT_EQ(Ids{}, dialog.Disabled(kAll));
        EXPECT_EQ(Ids{kAutomatic}, dialog.Checked({kAutomatic, kNever}));
    });
}

TEST_F(UpdateCheckDialog, ChecksNow) {
    Show([](const OpenDialog& dialog) {
        FakeModules::ForgetCalls();
        dialog.Press(kNow);
        const auto owner = reinterpret_cast<std::uint64_t>(dialog.window);
        EXPECT_EQ(Lines{L"CheckForUpdates_VB(" + std::to_wstring(owner) + L", 1)"},
                  FakeModules::Calls());
        EXPECT_TRUE(obtest::IsOpen(dialog.window));
    });
}

TEST_F(UpdateCheckDialog, TakesTheValuesAndSavesNothing) {
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Press(kNever);
                  SendMessageW(dialog.Item(kInterval), CB_SETCURSEL, 1, 0);
                  dialog.Ok();
              }));
    EXPECT_FALSE(options_.UpdateCheckEnabled);
    EXPECT_EQ(7u, options_.UpdateCheckIntervalDays);
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Press(kAutomatic);
                  SendMessageW(dialog.Item(kInterval), CB_SETCURSEL, 0, 0);
                  dialog.Ok();
              }));
    EXPECT_TRUE(options_.UpdateCheckEnabled);
    EXPECT_EQ(1u, options_.UpdateCheckIntervalDays);
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, obtest::kUserKey));
}

TEST_F(UpdateCheckDialog, CountsAWeekWithoutASelection) {
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  SendMessageW(dialog.Item(kInterval), CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
                  dialog.Ok();
              }));
    EXPECT_EQ(7u, options_.UpdateCheckIntervalDays);
}

TEST_F(UpdateCheckDialog, TakesNothingWherePolicyForbidsChecks) {
    options_.NoUpdateChecking = true;
    options_.UpdateCheckIntervalDays = 5;
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) {
                  dialog.Press(kNever);
                  dialog.Ok();
              }));
    EXPECT_TRUE(options_.UpdateCheckEnabled);
    EXPECT_EQ(5u, options_.UpdateCheckIntervalDays);
}

TEST_F(UpdateCheckDialog, CancelTakesNothing) {
    EXPECT_EQ(2, Show([](const OpenDialog& dialog) {
                  dialog.Press(kNever);
                  SendMessageW(dialog.Item(kInterval), CB_SETCURSEL, 1, 0);
              }));
    EXPECT_TRUE(options_.UpdateCheckEnabled);
    EXPECT_EQ(1u, options_.UpdateCheckIntervalDays);
}

TEST_F(UpdateCheckDialog, HasABoldHeadlineAndTheIcon) {
    Show([](const OpenDialog& dialog) {
        EXPECT_TRUE(obtest::IsBold(dialog.Item(OB_UPDATE_CHECK_HEADLINE)));
        EXPECT_NE(0, SendMessageW(dialog.window, WM_GETICON, ICON_SMALL, 0));
    });
}

TEST_F(UpdateCheckDialog, IsWhiteAndItsLabelsHaveTheColoursOfWindows) {
    Show([](const OpenDialog& dialog) {
        const HDC context = GetDC(dialog.window);
        const auto dc = reinterpret_cast<WPARAM>(context);
        const auto label = reinterpret_cast<LPARAM>(dialog.Item(OB_UPDATE_CHECK_HEADLINE));
        EXPECT_EQ(reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH)),
                  SendMessageW(dialog.window, WM_CTLCOLORDLG, dc,
                               reinterpret_cast<LPARAM>(dialog.window)));
        EXPECT_EQ(reinterpret_cast<LRESULT>(GetSysColorBrush(5)),
                  SendMessageW(dialog.window, WM_CTLCOLORSTATIC, dc, label));
        ReleaseDC(dialog.window, context);
    });
}

} // namespace
