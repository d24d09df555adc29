// The login to a WebDAV server and the page of its account at one scale of the display: no text cut
// off.
#include <windows.h>

#include <gtest/gtest.h>

#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/DavLoginDialog.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "services/providers/webdav/DavPage.h"
#include "services/providers/webdav/DavPageIds.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::ItemText;
using obtest::WaitUntil;

namespace {

constexpr wchar_t kHost[] = L"files.cloud.university-of-somewhere.example.org";

HttpUrl Root(const char* address) { return ParseHttpUrl(address).value_or(HttpUrl{}); }

class DavPicture : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    static void LookAtLogin(DavLogin login, const std::wstring& name) {
        DialogUiDriver user(OB_DAV_ADDRESS, [&](HWND dialog) {
            SetDlgItemTextW(dialog, OB_DAV_PASSWORD, L"something");
            if (login.check) {
                obtest::PressCommand(dialog, IDOK);
                EXPECT_TRUE(
                    WaitUntil([=] { return ItemText(dialog, OB_DAV_LOGIN_STATE).size() > 20; }));
            }
            for (const int id : {OB_DAV_LOGIN_INTRO, OB_DAV_ADDRESS_LABEL, OB_DAV_USER_LABEL,
                                 OB_DAV_PASSWORD_LABEL, OB_DAV_LOGIN_STATE, static_cast<int>(IDOK),
                                 static_cast<int>(IDCANCEL)}) {
                obtest::ExpectWholeText(GetDlgItem(dialog, id));
            }
            obtest::LookAt(dialog, name, 400);
            obtest::PressCommand(dialog, IDCANCEL);
        });
        ShowDavLogin(nullptr, login);
    }

    static void LookAtPage(const DavLinkRules& rules, const std::wstring& pattern, bool hasLogOut,
                           const std::wstring& name) {
        DavPage page{
            {Root("https://cloud.example.org/remote.php/dav/files/ann/"), L"ann", pattern, false},
            hasLogOut,
            [rules](HANDLE) { return rules; }};
        DialogUiDriver user(OB_DAV_PAGE_PATTERN, [&](HWND dialog) {
            EXPECT_TRUE(WaitUntil([=] {
                return ItemText(dialog, OB_DAV_PAGE_RULES) != OwnText(OB_TEXT_DAV_ASKING_LINKS);
            }));
            for (const int id :
                 {OB_DAV_PAGE_SERVER_LABEL, OB_DAV_PAGE_USER_LABEL, OB_DAV_PAGE_RULES,
                  OB_DAV_PAGE_PASSWORDS_NOTE, OB_DAV_PAGE_PATTERN_LABEL, OB_DAV_PAGE_PATTERN_NOTE,
                  OB_DAV_PAGE_PREVIEW_LABEL, OB_DAV_PAGE_LOG_OUT, static_cast<int>(IDOK),
                  static_cast<int>(IDCANCEL)}) {
                obtest::ExpectWholeText(GetDlgItem(dialog, id));
            }
            obtest::ExpectWholeText(GetDlgItem(dialog, OB_DAV_PAGE_PASSWORDS), 20);
            obtest::LookAt(dialog, name, 400);
            obtest::PressCommand(dialog, IDCANCEL);
        });
        ShowDavPage(nullptr, page);
    }
};

TEST_F(DavPicture, OfTheLogin) {
    LookAtLogin({L"https://cloud.example.org", L"ann", false, L"", nullptr, {}, {}}, L"dav-login");
}

TEST_F(DavPicture, OfAFailedLogin) {
    const DavLoginCheck fails = [](const HttpUrl&, const std::wstring&, const ObLib::Secret&,
                                   HANDLE) {
        return DavCheckResult{FormatOwnText(OB_TEXT_DAV_CERTIFICATE_DATE, {kHost}), {}};
    };
    LookAtLogin({L"https://files.cloud.university-of-somewhere.example.org",
                 L"ann",
                 false,
                 L"",
                 fails,
                 {},
                 {}},
                L"dav-login-failed");
}

TEST_F(DavPicture, OfAPasswordThatNoLongerCounts) {
    LookAtLogin({L"https://cloud.example.org/remote.php/dav/files/ann/",
                 L"ann",
                 true,
                 FormatOwnText(OB_TEXT_DAV_WRONG_LOGIN, {L"cloud.example.org"}),
                 nullptr,
                 {},
                 {}},
                L"dav-login-again");
}

TEST_F(DavPicture, OfTheAccountPageOfAServerThatMakesLinks) {
    ShareRules rules;
    rules.canShareByLink = rules.needsPassword = rules.needsExpiry = true;
    rules.expiryDays = 14;
    LookAtPage({rules, {}}, L"", true, L"dav-page-server");
}

TEST_F(DavPicture, OfTheAccountPageWithAPattern) {
    LookAtPage({},
               L"https://files.example.com/remote/public/by-folder/of-everybody"
               L"/whose-name-is-long/{path}?download=1&source=mail",
               true, L"dav-page-pattern");
}

TEST_F(DavPicture, OfTheAccountPageOfADeadServer) {
    LookAtPage({{}, FormatOwnText(OB_TEXT_DAV_CERTIFICATE_DATE, {kHost})}, L"", true,
               L"dav-page-dead");
}

TEST_F(DavPicture, OfAFirstLoginThatNeedsAPattern) {
    LookAtPage({}, L"", false, L"dav-page-first");
}

} // namespace
