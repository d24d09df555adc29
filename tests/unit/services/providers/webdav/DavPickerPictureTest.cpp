// The picker of files on servers at one scale of the display: no text cut off.
#include <gtest/gtest.h>

#include "services/providers/webdav/DavPicker.h"
#include "tests/support/PictureSuite.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/webdav/FakeDavAccount.h"
#include "tests/unit/services/providers/webdav/PickerUser.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::PickerUser;

namespace {

class DavPickerPicture : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }
    ~DavPickerPicture() override { SetEvent(fake_->answers.Get()); }

    void Look(const std::vector<DavPickAccount>& accounts, const std::wstring& name,
              const std::function<void(PickerUser)>& prepare) {
        DialogUiDriver driver(OB_DAVPICK_LIST, [&](HWND dialog) {
            const PickerUser user(dialog);
            prepare(user);
            for (const int id :
                 {OB_DAVPICK_PATH_LABEL, OB_DAVPICK_UP, OB_DAVPICK_REFRESH, OB_DAVPICK_MESSAGE,
                  OB_DAVPICK_LIST_LABEL, OB_DAVPICK_STATUS, int{IDOK}, int{IDCANCEL}}) {
                obtest::ExpectWholeText(user.Control(id));
            }
            obtest::LookAt(dialog, name, 400);
            user.Press(IDCANCEL); // ends the links, where some are being made
            user.Press(IDCANCEL);
        });
        PickFromServers(accounts, 0, L"WebDAV", nullptr);
        EXPECT_TRUE(driver.WasUsed());
    }
    DavPickAccount Account(const wchar_t* label) const {
        DavPickAccount account = AccountOf(fake_);
        account.account.label = label;
        return account;
    }

    const std::shared_ptr<FakeDavAccount> fake_ = std::make_shared<FakeDavAccount>();
};

TEST_F(DavPickerPicture, OfAFolderThatIsBeingRead) {
    fake_->silent.insert(L"");
    fake_->folders[L""] = std::vector<DavItem>{};
    Look({Account(L"Work")}, L"dav-picker-reading",
         [](PickerUser user) { EXPECT_TRUE(user.Reads(L"Reading the folder")); });
}

TEST_F(DavPickerPicture, OfAFolderWithFiles) {
    fake_->folders[L""] = std::vector{Folder(L"Photos")};
    fake_->folders[L"Photos"] = std::vector{
        Folder(L"2025"),
        Folder(L"2026"),
        File(L"A harbour at night.jpg", 4'812'000),
        File(L"Invoice.pdf", 84'100),
        File(L"Minutes 2.docx", 21'000),
        File(L"Minutes 10.docx", 22'500),
        File(L"A name that is so long that it doesn't fit the column, whatever the width of the "
             L"window, and goes on (final, really).zip",
             5'000'000'000),
        File(L"\u05E9\u05DC\u05D5\u05DD.txt", 12),
        File(L"fdp.\u202Eexe", 1'000'000),
        File(L"No size.bin", std::nullopt)};
    Look({Account(L"Work"), Account(L"Home")}, L"dav-picker-files", [](PickerUser user) {
        EXPECT_TRUE(user.Sees({L"Photos"}));
        user.DoubleClick(0);
        EXPECT_TRUE(obtest::WaitUntil([&] { return user.Count() == 10; }));
        user.Select(2);
        user.Select(3);
        EXPECT_TRUE(obtest::WaitUntil([&] { return user.Status() == L"2 selected"; }));
    });
}

TEST_F(DavPickerPicture, OfAServerThatCannotBeReached) {
    fake_->folders[L""] =
        DavErrorOf(HttpError{HttpFault::Certificate, 0, CertificateFault::Revoked});
    DavPickAccount account = Account(L"Work");
    account.server.host = "a-server-with-a-name-that-is-long.department.example.com";
    Look({account, Account(L"Home")}, L"dav-picker-failed", [](PickerUser user) {
        EXPECT_TRUE(obtest::WaitUntil([&] { return user.Message().size() > 100; }));
    });
}

TEST_F(DavPickerPicture, WhileLinksAreMade) {
    fake_->folders[L""] = std::vector{File(L"1.txt"), File(L"2.txt")};
    fake_->isShareSilent = true;
    Look({Account(L"Work")}, L"dav-picker-links", [](PickerUser user) {
        EXPECT_TRUE(user.Sees({L"1.txt", L"2.txt"}));
        user.Select(0);
        user.Select(1);
        user.Press(IDOK);
        EXPECT_TRUE(obtest::WaitUntil([&] { return user.Status() == L"Making link 1 of 2"; }));
    });
}

} // namespace
