// The chooser at one scale of the display: in proportion, and no text cut off. In the folder
// OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <commctrl.h>

#include <algorithm>

#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

namespace {

using obtest::Chooser;

void ExpectRowsFit(const Chooser& chooser) {
    const int column = ListView_GetColumnWidth(chooser.list, 0);
    RECT client{};
    GetClientRect(chooser.list, &client);
    EXPECT_LE(column, client.right); // no scroll bar below these rows
    EXPECT_GE(column, client.right - 2);
    int row = 0;
    for (const std::wstring& text : chooser.Rows()) {
        RECT label{};
        ListView_GetItemRect(chooser.list, row++, &label, LVIR_LABEL);
        EXPECT_LE(ListView_GetStringWidth(chooser.list, text.c_str()), label.right - label.left);
    }
}

class ChooserPicture : public obtest::ChooserFixture {
protected:
    static void SetUpTestSuite() {
        obtest::BeAwareOfTheScale();
        ChooserFixture::SetUpTestSuite();
    }

    void Look(const std::wstring& name, int tick = -1) {
        EXPECT_FALSE(Show([&](const Chooser& chooser) {
            if (tick >= 0) chooser.Tick(tick);
            for (const int id : {OB_CHOOSER_HEADLINE, OB_CHOOSER_EXPLANATION, OB_CHOOSER_LABEL,
                                 OB_CHOOSER_HINT, IDCANCEL}) {
                obtest::ExpectWholeText(chooser.Item(id));
            }
            for (const int id : {OB_CHOOSER_CONTINUE, OB_CHOOSER_DEFAULT}) {
                obtest::ExpectWholeText(chooser.Item(id), obtest::AtScale(16));
            }
            ExpectRowsFit(chooser);
            Keep(chooser, name);
            chooser.Cancel();
        }));
    }

private:
    static void Keep(const Chooser& chooser, const std::wstring& name) {
        const auto picture = obtest::TakeSettledPicture(chooser.dialog);
        ASSERT_TRUE(picture);
        EXPECT_NE(std::count(picture->pixels.begin(), picture->pixels.end(), 0xEA0000u), 0)
            << "the headline has no pixel of its red";
        obtest::KeepPicture(*picture, L"chooser-" + name, 380);
    }
};

TEST_F(ChooserPicture, OfSeveralAccounts) {
    Answer(L"Providers", L"21,7,8");
    Answer(L"provider21.GetDisplayName", L"Archive Store");
    Answer(L"provider7.GetDisplayName", L"Network Folder");
    Answer(L"provider7.GetAccountProfiles", L"Projects|p;Team share in Vienna|t");
    Answer(L"provider7.GetAccountSpace.p", L"5004003002,53687091200");
    Answer(L"provider7.GetAccountSpace.t", L"0,1099511627776");
    Answer(L"provider8.GetDisplayName", L"WebDAV");
    Answer(L"provider8.GetAccountProfiles", L"Ann Example|ann");
    Answer(L"provider8.GetAccountSpace", L"-2,-2");
    Answer(L"provider7.IsAccountLoggedIn", L"1");
    Look(L"several", 1);
}

TEST_F(ChooserPicture, OfAListThatScrolls) {
    std::wstring accounts = L"Account 1|1";
    for (int number = 2; number <= 16; ++number) {
        accounts += L";Account " + std::to_wstring(number) + L"|" + std::to_wstring(number);
    }
    OneProvider(accounts, false);
    Answer(L"provider7.GetAccountSpace", L"123456789012,1099511627776");
    Look(L"sixteen", 2);
}

TEST_F(ChooserPicture, OfOneProviderWithoutAnAccount) {
    OneProvider(L"0");
    Look(L"no-account", 0);
}

TEST_F(ChooserPicture, OfNoProvider) { Look(L"none"); }

} // namespace
