// The cloud settings at one scale of the display: no text is cut off, and the default
// row has a font of its own.
// In the folder OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <commctrl.h>

#include <algorithm>

#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/settings/CloudFixture.h"

namespace {

using obtest::CloudSettings;
using obtest::Picture;

constexpr int kTexts[] = {OB_CLOUD_SEND_HEADLINE, OB_CLOUD_SIZE_LABEL, OB_CLOUD_ACCOUNTS_HEADLINE,
                          OB_CLOUD_EXPIRY_HEADLINE, OB_CLOUD_DAYS_LABEL};
constexpr int kButtons[] = {OB_CLOUD_SEND_NEVER,
                            OB_CLOUD_SEND_ALWAYS,
                            OB_CLOUD_SEND_LARGE,
                            OB_CLOUD_LOGIN,
                            OB_CLOUD_LOGOUT,
                            OB_CLOUD_SET_DEFAULT,
                            OB_CLOUD_ADD_ACCOUNT,
                            OB_CLOUD_MANAGE,
                            OB_CLOUD_EXPIRE,
                            IDOK,
                            IDCANCEL};

std::vector<std::uint32_t> PixelsOfRow(const CloudSettings& settings, const Picture& picture,
                                       int row) {
    RECT area{};
    ListView_GetItemRect(settings.list, row, &area, LVIR_BOUNDS);
    MapWindowPoints(settings.list, nullptr, reinterpret_cast<POINT*>(&area), 2);
    RECT whole{};
    GetWindowRect(settings.dialog, &whole);
    std::vector<std::uint32_t> pixels;
    for (int y = area.top - whole.top; y < area.bottom - whole.top; ++y) {
        const auto line = picture.pixels.begin() + y * picture.width;
        pixels.insert(pixels.end(), line + area.left - whole.left, line + area.right - whole.left);
    }
    return pixels;
}

class CloudSettingsPicture : public obtest::CloudFixture {
protected:
    static void SetUpTestSuite() {
        obtest::BeAwareOfTheScale();
        CloudFixture::SetUpTestSuite();
    }
    static void SeveralAccounts() {
        Answer(L"Providers", L"21,7,8");
        Answer(L"provider21.GetShortDescription", L"Archive Store");
        Answer(L"provider7.GetShortDescription", L"Network Folder");
        Answer(L"provider7.GetAccountProfiles", L"Projects|p;Team share in Vienna|t");
        Answer(L"provider8.GetShortDescription", L"WebDAV");
        Answer(L"provider8.GetAccountProfiles", L"Ann Example|ann");
        for (const auto* const id : {L"21", L"7", L"8"}) {
            Answer(L"provider" + std::wstring(id) + L".GetBitmap", L"1");
        }
        Answer(L"IsAuthorized2", L"1");
        Answer(L"GetDefaultStorageProvider", L"7|Team share in Vienna|t");
    }
    void Look(const std::wstring& name, const std::function<void(const CloudSettings&)>& set) {
        Use([&](const CloudSettings& settings) {
            set(settings);
            for (const int id : kTexts) obtest::ExpectWholeText(settings.Item(id));
            for (const int id : kButtons) {
                obtest::ExpectWholeText(settings.Item(id), obtest::AtScale(16));
            }
            obtest::LookAt(settings.dialog, L"cloud-" + name, 500, 400);
        });
    }
};

TEST_F(CloudSettingsPicture, OfSeveralAccounts) {
    SeveralAccounts();
    Look(L"several", [](const CloudSettings& settings) { settings.Select(1); });
}

// Not every font of the test machine is darker where it is bold, so only a difference counts.
TEST_F(CloudSettingsPicture, ShowsTheDefaultRowAloneInAnotherFont) {
    SeveralAccounts();
    Use([](const CloudSettings& settings) {
        const auto bold = obtest::TakeSettledPicture(settings.dialog);
        ASSERT_TRUE(bold);
        Answer(L"IsProviderSupport.7.1", L"0");
        InvalidateRect(settings.list, nullptr, TRUE);
        const auto isPlain = [&] {
            const auto now = obtest::TakeSettledPicture(settings.dialog);
            return now && PixelsOfRow(settings, *now, 0) != PixelsOfRow(settings, *bold, 0);
        };
        ASSERT_TRUE(obtest::WaitUntil(isPlain));
        const auto plain = obtest::TakeSettledPicture(settings.dialog);
        ASSERT_TRUE(plain);
        EXPECT_EQ(PixelsOfRow(settings, *plain, 1), PixelsOfRow(settings, *bold, 1));
    });
}

TEST_F(CloudSettingsPicture, OfALongAccountNameAndAListThatScrolls) {
    OneProvider(L"An account with a name of fifty characters, no less|key;" +
                obtest::ManyAccounts(15));
    Answer(L"provider7.GetBitmap", L"1");
    Look(L"sixteen", [](const CloudSettings& settings) { settings.Select(0); });
}

TEST_F(CloudSettingsPicture, OfNoProvider) {
    Look(L"none", [](const CloudSettings&) {});
}

TEST_F(CloudSettingsPicture, OfWhatPoliciesTakeAway) {
    SeveralAccounts();
    options_.DisableCloudServices = true;
    options_.ExpireFilesAvailable = false;
    Look(L"policies", [](const CloudSettings&) {});
}

TEST_F(CloudSettingsPicture, OfDaysThatWereRefused) {
    SeveralAccounts();
    const obtest::MessageBoxWatcher boxes;
    Look(L"refused", [](const CloudSettings& settings) {
        settings.Press(OB_CLOUD_EXPIRE);
        settings.SetFocusTo(OB_CLOUD_DAYS);
        settings.SetField(OB_CLOUD_DAYS, L"1850");
        settings.Ok();
    });
}

} // namespace
