// The cloud settings as a window: what they show of the options, and what OK makes of the fields.
#include "OBCore/settings/ObConfigureCloudServiceDialog.h"

#include <commctrl.h>

#include <optional>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

namespace {

using obcore::OBOptions;
using obcore::SendSettingKind;
using obtest::CloudSettings;
using obtest::FakeModules;
using obtest::kQuilletKey;
using obtest::kUserKey;
using obtest::Lines;
using obtest::MessageBoxWatcher;

constexpr int kChoices[] = {OB_CLOUD_SEND_ALWAYS, OB_CLOUD_SEND_LARGE, OB_CLOUD_SEND_NEVER};

bool IsTabStop(HWND window) { return (GetWindowLongW(window, GWL_STYLE) & WS_TABSTOP) != 0; }

LOGFONTW FontOf(HWND window) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof font,
               &font);
    return font;
}

std::vector<int> CheckedOf(const CloudSettings& settings) {
    std::vector<int> checked;
    for (const int id : kChoices) {
        if (settings.IsChecked(id)) checked.push_back(id);
    }
    return checked;
}

std::pair<int, int> RangeOf(const CloudSettings& settings, int spin) {
    int low = 0;
    int high = 0;
    SendMessageW(settings.Item(spin), UDM_GETRANGE32, reinterpret_cast<WPARAM>(&low),
                 reinterpret_cast<LPARAM>(&high));
    return {low, high};
}

class ConfigureCloud : public obtest::CloudFixture {
protected:
    void SetUp() override {
        CloudFixture::SetUp();
        ASSERT_TRUE(obcore::LoadArchiveService()); // OBOptions::Load asks it
        obtest::ClearProductRegistry();
        OneProvider(L"Ann|ann");
    }
    // Presses OK after `set`, which the dialog must take.
    void Accept(const std::function<void(const CloudSettings&)>& set) {
        EXPECT_EQ(Show([&set](const CloudSettings& settings) {
                      set(settings);
                      settings.Ok();
                      EXPECT_TRUE(obtest::WaitUntilClosed(settings.dialog));
                  }),
                  1);
    }
};

// What is shown.

TEST_F(ConfigureCloud, ChecksTheSettingOfTheRecord) {
    const struct {
        std::uint32_t setting;
        int id;
    } rows[] = {{0, OB_CLOUD_SEND_NEVER},
                {1, OB_CLOUD_SEND_ALWAYS},
                {2, OB_CLOUD_SEND_LARGE},
                {3, OB_CLOUD_SEND_LARGE},
                {0xFFFFFFFF, OB_CLOUD_SEND_LARGE}};
    for (const auto& row : rows) {
        options_.SendSetting = static_cast<SendSettingKind>(row.setting);
        Use([&row](const CloudSettings& settings) {
            EXPECT_EQ(CheckedOf(settings), std::vector<int>{row.id}) << row.setting;
            for (const int id : kChoices) EXPECT_TRUE(settings.IsEnabled(id));
            for (const int id : kChoices) {
                EXPECT_EQ(id == row.id, IsTabStop(settings.Item(id))) << row.setting;
            }
            EXPECT_TRUE(settings.IsEnabled(OB_CLOUD_MINIMUM_SIZE));
        });
    }
}

TEST_F(ConfigureCloud, ShowsTheNumbersOfTheRecordAndTheirRanges) {
    options_.MinimumSize = 17;
    options_.ExpireFiles = true;
    options_.S4DelExpireDays = 90;
    Use([](const CloudSettings& settings) {
        EXPECT_EQ(settings.Field(OB_CLOUD_MINIMUM_SIZE), L"17");
        EXPECT_EQ(RangeOf(settings, OB_CLOUD_MINIMUM_SIZE_SPIN), std::pair(0, 2048));
        EXPECT_TRUE(settings.IsChecked(OB_CLOUD_EXPIRE));
        EXPECT_EQ(settings.Field(OB_CLOUD_DAYS), L"90");
        EXPECT_EQ(RangeOf(settings, OB_CLOUD_DAYS_SPIN), std::pair(0, 1825));
    });
    options_.ExpireFiles = false;
    Use([](const CloudSettings& settings) {
        EXPECT_FALSE(settings.IsChecked(OB_CLOUD_EXPIRE));
        EXPECT_TRUE(settings.IsEnabled(OB_CLOUD_DAYS));
    });
}

TEST_F(ConfigureCloud, OffersNoLinksWithoutCloudServices) {
    options_.SendSetting = SendSettingKind::Always;
    options_.MinimumSize = 17;
    options_.DisableCloudServices = true;
    std::pair<int, int> stockRange;
    Use([&](const CloudSettings& settings) {
        EXPECT_EQ(CheckedOf(settings), std::vector<int>{OB_CLOUD_SEND_NEVER});
        for (const int id : kChoices) EXPECT_FALSE(settings.IsEnabled(id));
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_MINIMUM_SIZE));
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_MINIMUM_SIZE_SPIN));
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_SIZE_LABEL));
        EXPECT_TRUE(settings.IsEnabled(OB_CLOUD_DAYS_LABEL));
        EXPECT_EQ(settings.Field(OB_CLOUD_MINIMUM_SIZE), L"17");
        stockRange = RangeOf(settings, OB_CLOUD_MINIMUM_SIZE_SPIN);
        EXPECT_TRUE(settings.IsEnabled(OB_CLOUD_DAYS));
    });
    EXPECT_NE(stockRange, std::pair(0, 2048));
}

TEST_F(ConfigureCloud, OffersNoExpiryThatIsntAvailable) {
    options_.ExpireFilesAvailable = false;
    options_.ExpireFiles = true;
    options_.S4DelExpireDays = 90;
    Use([](const CloudSettings& settings) {
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_EXPIRE));
        EXPECT_FALSE(settings.IsChecked(OB_CLOUD_EXPIRE));
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_DAYS));
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_DAYS_SPIN));
        EXPECT_FALSE(settings.IsEnabled(OB_CLOUD_DAYS_LABEL));
        EXPECT_TRUE(settings.IsEnabled(OB_CLOUD_SIZE_LABEL));
        EXPECT_EQ(settings.Field(OB_CLOUD_DAYS), L"");
        EXPECT_NE(RangeOf(settings, OB_CLOUD_DAYS_SPIN), std::pair(0, 1825));
    });
}

// The tip at the middle of a control of the dialog; empty where no window of tips has one.
std::wstring TipOn(const CloudSettings& settings, int id) {
    RECT place{};
    GetWindowRect(settings.Item(id), &place);
    POINT middle{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    ScreenToClient(settings.dialog, &middle);
    std::wstring found;
    const auto look = [&](HWND tips) {
        wchar_t text[200] = L"";
        TTHITTESTINFOW test{};
        test.hwnd = settings.dialog;
        test.pt = middle;
        test.ti.cbSize = TTTOOLINFOW_V2_SIZE;
        if (!SendMessageW(tips, TTM_HITTESTW, 0, reinterpret_cast<LPARAM>(&test))) return;
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V2_SIZE;
        tool.hwnd = settings.dialog;
        tool.uId = test.ti.uId;
        tool.lpszText = text;
        SendMessageW(tips, TTM_GETTEXTW, std::size(text), reinterpret_cast<LPARAM>(&tool));
        found = text;
    };
    for (HWND tips = nullptr;
         (tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr)) != nullptr;) {
        if (GetWindow(tips, GW_OWNER) == settings.dialog) look(tips);
    }
    return found;
}

TEST_F(ConfigureCloud, GivesATipWhereTheAdministratorHasDecided) {
    const std::wstring decided = obcore::LoadText(obcore::TextId::DecidedByAdministrator);
    ASSERT_FALSE(decided.empty());
    Use([](const CloudSettings& settings) {
        EXPECT_EQ(TipOn(settings, OB_CLOUD_SEND_ALWAYS), L"");
        EXPECT_EQ(TipOn(settings, OB_CLOUD_EXPIRE), L"");
    });
    options_.DisableCloudServices = true;
    Use([&](const CloudSettings& settings) {
        EXPECT_EQ(TipOn(settings, OB_CLOUD_SEND_ALWAYS), decided);
        EXPECT_EQ(TipOn(settings, OB_CLOUD_MINIMUM_SIZE), decided);
        EXPECT_EQ(TipOn(settings, OB_CLOUD_EXPIRE), L"");
        EXPECT_EQ(TipOn(settings, OB_CLOUD_LOGIN), L"") << "disabled by nobody's decision";
    });
    options_.DisableCloudServices = false;
    options_.ExpireFilesAvailable = false;
    Use([&](const CloudSettings& settings) {
        EXPECT_EQ(TipOn(settings, OB_CLOUD_SEND_ALWAYS), L"");
        EXPECT_EQ(TipOn(settings, OB_CLOUD_EXPIRE), decided);
        EXPECT_EQ(TipOn(settings, OB_CLOUD_DAYS), decided);
    });
}

TEST_F(ConfigureCloud, ShowsItsHeadlinesBold) {
    Use([this](const CloudSettings& settings) {
        for (const int id :
             {OB_CLOUD_SEND_HEADLINE, OB_CLOUD_ACCOUNTS_HEADLINE, OB_CLOUD_EXPIRY_HEADLINE}) {
            EXPECT_EQ(FontOf(settings.Item(id)).lfWeight, 700) << id;
        }
        LOGFONTW bold{};
        GetObjectW(context_.boldFont, sizeof bold, &bold);
        const LOGFONTW plain = FontOf(settings.list);
        EXPECT_EQ(bold.lfWeight, 700);
        EXPECT_EQ(plain.lfWeight, 400);
        EXPECT_EQ(bold.lfHeight, plain.lfHeight);
        EXPECT_STREQ(bold.lfFaceName, plain.lfFaceName);
    });
    EXPECT_EQ(context_.boldFont, nullptr);
}

// Drawing.

struct Drawn {
    LRESULT answer = 0;
    HGDIOBJ font = nullptr;
};

// What the dialog answers to an announcement of the list's painting.
Drawn Announce(const CloudSettings& settings, DWORD stage, int row) {
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    NMLVCUSTOMDRAW draw{};
    draw.nmcd.hdr = {settings.dialog, OB_CLOUD_ACCOUNTS, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.dwDrawStage = stage;
    draw.nmcd.hdc = dc.Get();
    draw.nmcd.dwItemSpec = static_cast<DWORD_PTR>(row);
    if (row >= 0) {
        draw.nmcd.lItemlParam =
            reinterpret_cast<LPARAM>(obtest::ProfileOfRowIn(settings.list, row));
    }
    const LRESULT answer = SendMessageW(settings.dialog, WM_NOTIFY, OB_CLOUD_ACCOUNTS,
                                        reinterpret_cast<LPARAM>(&draw));
    return {answer, GetCurrentObject(dc.Get(), OBJ_FONT)};
}

TEST_F(ConfigureCloud, DrawsTheDefaultRowInTheBoldFont) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"GetDefaultStorageProvider", L"7|Bob|bob");
    Use([this](const CloudSettings& settings) {
        EXPECT_EQ(Announce(settings, CDDS_PREPAINT, -1).answer, CDRF_NOTIFYITEMDRAW);
        const Drawn top = Announce(settings, CDDS_ITEMPREPAINT, 0);
        EXPECT_EQ(top.answer, CDRF_NEWFONT);
        EXPECT_EQ(top.font, context_.boldFont);
        const Drawn other = Announce(settings, CDDS_ITEMPREPAINT, 1);
        EXPECT_EQ(other.answer, CDRF_DODEFAULT);
        EXPECT_NE(other.font, context_.boldFont);
        EXPECT_EQ(Announce(settings, CDDS_ITEMPOSTPAINT, 0).answer, CDRF_DODEFAULT);
        Answer(L"IsProviderSupport.7.1", L"0");
        EXPECT_EQ(Announce(settings, CDDS_ITEMPREPAINT, 0).answer, CDRF_DODEFAULT);
    });
}

TEST_F(ConfigureCloud, FindsTheDefaultOfProvider21WhereverItIs) {
    Answer(L"Providers", L"5,21");
    Answer(L"provider21.GetAccountProfiles", L"Ann|ann;Bob|bob");
    Answer(L"GetDefaultStorageProvider", L"21|Bob|bob");
    Use([](const CloudSettings& settings) {
        EXPECT_EQ(Announce(settings, CDDS_ITEMPREPAINT, 0).answer, CDRF_DODEFAULT);
        EXPECT_EQ(Announce(settings, CDDS_ITEMPREPAINT, 1).answer, CDRF_DODEFAULT);
        EXPECT_EQ(Announce(settings, CDDS_ITEMPREPAINT, 2).answer, CDRF_NEWFONT);
    });
}

// OK.

TEST_F(ConfigureCloud, TakesTheSettingsWithOk) {
    Accept([](const CloudSettings& settings) {
        settings.Press(OB_CLOUD_SEND_ALWAYS);
        settings.SetField(OB_CLOUD_MINIMUM_SIZE, L"33");
        settings.Press(OB_CLOUD_EXPIRE);
        settings.SetField(OB_CLOUD_DAYS, L"77");
    });
    EXPECT_EQ(options_.SendSetting, SendSettingKind::Always);
    EXPECT_EQ(options_.MinimumSize, 33u);
    EXPECT_EQ(options_.MinimumSizeBytes, 33u << 20);
    EXPECT_TRUE(options_.ExpireFiles);
    EXPECT_EQ(options_.S4DelExpireDays, 77u);
}

TEST_F(ConfigureCloud, LeavesTheRecordAloneWithoutOk) {
    const OBOptions before = options_;
    Use([](const CloudSettings& settings) {
        settings.Press(OB_CLOUD_SEND_ALWAYS);
        settings.SetField(OB_CLOUD_MINIMUM_SIZE, L"33");
        settings.LeaveField(OB_CLOUD_MINIMUM_SIZE);
        settings.Press(OB_CLOUD_EXPIRE);
        settings.SetField(OB_CLOUD_DAYS, L"77");
    });
    EXPECT_EQ(options_.SendSetting, before.SendSetting);
    EXPECT_EQ(options_.MinimumSize, before.MinimumSize);
    EXPECT_EQ(options_.ExpireFiles, before.ExpireFiles);
    EXPECT_EQ(options_.S4DelExpireDays, before.S4DelExpireDays);
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kQuilletKey));
}

TEST_F(ConfigureCloud, StoresEachSettingSoThatTheNextLoadHasIt) {
    const std::pair<int, SendSettingKind> choices[] = {
        {OB_CLOUD_SEND_ALWAYS, SendSettingKind::Always},
        {OB_CLOUD_SEND_LARGE, SendSettingKind::WhenLarger},
        {OB_CLOUD_SEND_NEVER, SendSettingKind::Never}};
    std::uint32_t number = 0;
    for (const auto& [id, setting] : choices) {
        number += 600;
        Accept([&, id = id](const CloudSettings& settings) {
            settings.Press(id);
            settings.SetField(OB_CLOUD_MINIMUM_SIZE, std::to_wstring(number));
            settings.Press(OB_CLOUD_EXPIRE); // on, off, on
            settings.SetField(OB_CLOUD_DAYS, std::to_wstring(number));
        });
        EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kQuilletKey, L"MinimumSize"),
                  std::to_wstring(number));
        OBOptions loaded;
        loaded.ProviderManager = manager_;
        loaded.Load();
        EXPECT_EQ(loaded.SendSetting, setting);
        EXPECT_EQ(loaded.MinimumSize, number);
        EXPECT_EQ(loaded.MinimumSizeBytes, number << 20);
        EXPECT_EQ(loaded.ExpireFiles, number != 1200);
        EXPECT_EQ(loaded.S4DelExpireDays, number);
        options_ = loaded;
    }
}

TEST_F(ConfigureCloud, StoresNeverWithoutCloudServices) {
    options_.SendSetting = SendSettingKind::Always;
    options_.DisableCloudServices = true;
    Accept([](const CloudSettings&) {});
    EXPECT_EQ(options_.SendSetting, SendSettingKind::Never);
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kQuilletKey, L"SendSetting"), L"0");
}

TEST_F(ConfigureCloud, StoresNoExpiryThatIsntAvailable) {
    options_.ExpireFilesAvailable = false;
    options_.ExpireFiles = true;
    options_.S4DelExpireDays = 91;
    obtest::SetUserValue(L"ExpireFiles", L"1");
    obtest::SetUserValue(L"S4DelExpireDays", L"90");
    Accept([](const CloudSettings&) {});
    EXPECT_FALSE(options_.ExpireFiles);       // of the box in the template
    EXPECT_EQ(options_.S4DelExpireDays, 91u); // whose field has no number
    EXPECT_EQ(obtest::ReadUserValue(L"ExpireFiles"), L"1");
    EXPECT_EQ(obtest::ReadUserValue(L"S4DelExpireDays"), L"90");
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kQuilletKey, L"SendSetting"), L"2");
}

TEST_F(ConfigureCloud, RefusesDaysAfterTheOtherSettingsWereTaken) {
    const MessageBoxWatcher boxes;
    const int result = Show([&](const CloudSettings& settings) {
        settings.Press(OB_CLOUD_SEND_ALWAYS);
        settings.SetField(OB_CLOUD_MINIMUM_SIZE, L"33");
        settings.Press(OB_CLOUD_EXPIRE);
        for (const auto* const days : {L"1826", L"1850", L"12345678901234567890"}) {
            settings.SetField(OB_CLOUD_DAYS, days);
            settings.Ok();
            EXPECT_TRUE(settings.IsOpen()) << days;
            EXPECT_EQ(settings.Field(OB_CLOUD_DAYS), L"1825") << days;
            EXPECT_EQ(settings.Focus(), settings.Item(OB_CLOUD_DAYS)) << days;
        }
        EXPECT_EQ(options_.SendSetting, SendSettingKind::Always);
        EXPECT_EQ(options_.MinimumSize, 33u);
        EXPECT_EQ(options_.MinimumSizeBytes, 33u << 20);
        EXPECT_FALSE(options_.ExpireFiles);
        EXPECT_EQ(options_.S4DelExpireDays, 30u);
        EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kQuilletKey));
        settings.Cancel();
    });
    EXPECT_EQ(result, IDCANCEL);
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].caption, L"Ombrix Vellant");
    EXPECT_EQ(seen[0].text, L"Files can be kept for 1,825 days at most.");
    EXPECT_TRUE(seen[0].hasIcon);
}

TEST_F(ConfigureCloud, TakesTheMostDaysThereAre) {
    Accept([](const CloudSettings& settings) { settings.SetField(OB_CLOUD_DAYS, L"1825"); });
    EXPECT_EQ(options_.S4DelExpireDays, 1825u);
    Accept([](const CloudSettings& settings) { settings.SetField(OB_CLOUD_DAYS, L"0"); });
    EXPECT_EQ(options_.S4DelExpireDays, 0u);
}

TEST_F(ConfigureCloud, CutsASizeWhenTheFieldLosesTheFocus) {
    Use([this](const CloudSettings& settings) {
        const struct {
            const wchar_t* typed;
            const wchar_t* shown;
        } rows[] = {{L"3000", L"2048"}, {L"2049", L"2048"}, {L"2048", L"2048"},
                    {L"0", L"0"},       {L"007", L"7"},     {L"12345678901234567890", L"2048"},
                    {L"", L"5"},        {L"-1", L"5"},      {L"12a", L"5"}};
        for (const auto& row : rows) {
            settings.SetField(OB_CLOUD_MINIMUM_SIZE, row.typed);
            settings.Command(OB_CLOUD_MINIMUM_SIZE, EN_CHANGE);
            EXPECT_EQ(settings.Field(OB_CLOUD_MINIMUM_SIZE), row.typed);
            settings.LeaveField(OB_CLOUD_MINIMUM_SIZE);
            EXPECT_EQ(settings.Field(OB_CLOUD_MINIMUM_SIZE), row.shown) << row.typed;
        }
        settings.SetFocusTo(OB_CLOUD_MINIMUM_SIZE);
        settings.SetField(OB_CLOUD_MINIMUM_SIZE, L"9999");
        settings.SetFocusTo(OB_CLOUD_DAYS);
        EXPECT_EQ(settings.Field(OB_CLOUD_MINIMUM_SIZE), L"2048");
        EXPECT_EQ(options_.MinimumSize, 5u);
    });
}

TEST_F(ConfigureCloud, CutsASizeWithOkToo) {
    Accept([](const CloudSettings& settings) {
        settings.SetField(OB_CLOUD_MINIMUM_SIZE, L"12345678901234567890");
    });
    EXPECT_EQ(options_.MinimumSize, 2048u);
    EXPECT_EQ(options_.MinimumSizeBytes, 0x80000000u);
}

TEST_F(ConfigureCloud, KeepsNumbersThatNoFieldReplaces) {
    for (const auto* const text : {L"", L"-5", L"1e3", L" 7"}) {
        Accept([text](const CloudSettings& settings) {
            settings.SetField(OB_CLOUD_MINIMUM_SIZE, text);
            settings.SetField(OB_CLOUD_DAYS, text);
        });
        EXPECT_EQ(options_.MinimumSize, 5u) << text;
        EXPECT_EQ(options_.S4DelExpireDays, 30u) << text;
    }
}

TEST_F(ConfigureCloud, BringsAnOptionOutOfRangeBackIntoIt) {
    options_.SendSetting = static_cast<SendSettingKind>(77);
    options_.MinimumSize = 0xFFFFFFFF;
    Accept([](const CloudSettings& settings) {
        EXPECT_EQ(settings.Field(OB_CLOUD_MINIMUM_SIZE), L"4294967295");
    });
    EXPECT_EQ(options_.SendSetting, SendSettingKind::WhenLarger);
    EXPECT_EQ(options_.MinimumSize, 2048u);
}

TEST_F(ConfigureCloud, EndsWithTwoOnEscAndOnItsCloseBox) {
    EXPECT_EQ(Show([](const CloudSettings& settings) {
                  EXPECT_TRUE(obtest::WaitUntil([&] { return settings.Focus() != nullptr; }));
                  PostMessageW(settings.Focus(), WM_KEYDOWN, VK_ESCAPE, 1);
                  EXPECT_TRUE(obtest::WaitUntilClosed(settings.dialog));
              }),
              2);
    EXPECT_EQ(Show([](const CloudSettings& settings) {
                  PostMessageW(settings.dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
                  EXPECT_TRUE(obtest::WaitUntilClosed(settings.dialog));
              }),
              2);
}

} // namespace
