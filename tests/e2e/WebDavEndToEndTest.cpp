// Whole requests whose zip is too large for a mail, with accounts of real WebDAV servers:
// everything is real. The page gets the text with the link, and the link gives the bytes.
#include <commctrl.h>

#include "OBCore/modules/DialogIds.h"
#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "services/providers/storage/PartNotes.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "services/providers/webdav/DavPageIds.h"
#include "services/providers/webdav/DavPickerIds.h"
#include "tests/e2e/KeptBytes.h"
#include "tests/e2e/WebDavRequest.h"

namespace obtest {
namespace {

using Texts = std::vector<std::wstring>;

constexpr int kCloudButton = 3011;
constexpr wchar_t kNoSpace[] =
    L"There is too little free space on the server \u201C127.0.0.1\u201D. Please delete files "
    L"there, or choose another account.";

class WebDavEndToEnd : public WebDavRequest {
protected:
    // The user chooses the second provider of the chooser and presses the button.
    void ContinueWithWebDav(HWND chooser) const {
        ASSERT_NE(chooser, nullptr);
        const HWND list = GetDlgItem(chooser, OB_CHOOSER_LIST);
        const HWND button = GetDlgItem(chooser, OB_CHOOSER_CONTINUE);
        PostMessageW(list, WM_KEYDOWN, VK_DOWN, 1);
        PostMessageW(list, WM_KEYDOWN, VK_DOWN, 1);
        PostMessageW(list, WM_KEYDOWN, VK_SPACE, 1);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(button) != 0; }));
        EXPECT_EQ(TextOf(button), Text(138));
        Click(button);
    }
};

INSTANTIATE_TEST_SUITE_P(Servers, WebDavEndToEnd, testing::Values("apache", "sabre", "ocs"));

TEST_P(WebDavEndToEnd, OnTheOpenFileNamePathLinksAZip) {
    AddDefaultAccount(Address());
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    ExpectLinkToZip();
}

TEST_P(WebDavEndToEnd, OnTheDialogPathLinksAZip) {
    AddDefaultAccount(Address());
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectLinkToZip();
}

// What a user without any account goes through.
TEST_P(WebDavEndToEnd, LogsInInTheChooserAndLinksAZip) {
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        ContinueWithWebDav(AwaitDialogWith(OB_CHOOSER_LIST));
        const HWND login = AwaitDialogWith(OB_DAV_ADDRESS);
        ASSERT_NE(login, nullptr);
        SetText(GetDlgItem(login, OB_DAV_ADDRESS), Address());
        SetText(GetDlgItem(login, OB_DAV_USER), User());
        SetText(GetDlgItem(login, OB_DAV_PASSWORD), Password());
        PressCommand(login, IDOK);
        if (MakesLinks()) return;
        const HWND page = AwaitDialogWith(OB_DAV_PAGE_PATTERN);
        ASSERT_NE(page, nullptr);
        SetText(GetDlgItem(page, OB_DAV_PAGE_PATTERN), Pattern());
        PressCommand(page, IDOK);
    });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    ExpectLinkToZip();
    const auto accounts = book_.Accounts(providers::kWebDavId);
    ASSERT_EQ(accounts.size(), 1u);
    EXPECT_EQ(store_.DefaultProfile().accountKey, accounts[0].key);
}

// Nothing is attached, nothing is lost, and no file is left on the server.
TEST_P(WebDavEndToEnd, LeavesNothingOfAFailedUpload) {
    const Relay relay(GetParam());
    AddDefaultAccount(AddressOfRelay());
    relay.On("PUT", "status 507", 0, 100);
    const std::wstring archive = files_.File(L"large.zip", LargeContent());
    const std::wstring canary = files_.File(L"canary.txt", "canary");
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {archive}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectNotUploaded(boxes, kNoSpace);
    EXPECT_TRUE(ReadFileContent(archive) == LargeContent());
    EXPECT_EQ(ReadFileContent(canary), "canary");
    EXPECT_EQ(LeftInTemp(), Texts{});
    EXPECT_EQ(AllStored(), Texts{});
    EXPECT_FALSE(providers::PartNotes(book_).HasAny());
}

// The same for a zip that the request made.
TEST_P(WebDavEndToEnd, OnTheOpenFileNamePathLeavesNothingOfAFailedUpload) {
    const Relay relay(GetParam());
    AddDefaultAccount(AddressOfRelay());
    relay.On("PUT", "status 507", 0, 100);
    const std::wstring file = LargeFile();
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    EXPECT_EQ(AskOpen().result, FALSE);
    EXPECT_TRUE(driver.Done());
    ExpectNotUploaded(boxes, kNoSpace);
    EXPECT_TRUE(ReadFileContent(file) == LargeContent());
    EXPECT_EQ(LeftInTemp(), Texts{});
    EXPECT_EQ(AllStored(), Texts{});
}

TEST_P(WebDavEndToEnd, LinksWhatIsThereAlreadyByTheCloudButton) {
    AddDefaultAccount(Address());
    WriteFileContent(FilesOfServer() + L"\\a b.zip", "stored before");
    PickerUiDriver driver([&](OpenPicker& picker) {
        const HWND button = GetDlgItem(picker.Window(), kCloudButton);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(button) != 0; }));
        Click(button);
        const HWND cloud = AwaitDialogWith(OB_DAVPICK_LIST);
        ASSERT_NE(cloud, nullptr);
        const HWND list = GetDlgItem(cloud, OB_DAVPICK_LIST);
        EXPECT_TRUE(WaitUntil([=] { return SendMessageW(list, LVM_GETITEMCOUNT, 0, 0) == 1; }));
        PostMessageW(list, WM_KEYDOWN, VK_HOME, 1);
        PostMessageW(list, WM_KEYDOWN, VK_SPACE, 1);
        EXPECT_TRUE(WaitUntil([=] { return SendMessageW(list, LVM_GETSELECTEDCOUNT, 0, 0) == 1; }));
        PressCommand(cloud, IDOK);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ASSERT_FALSE(browser_.delivered.empty());
    const std::wstring start = L"link ||a b.zip ";
    const std::wstring end = L"|||" + Text(150) + L" *: |||WebDAV server||";
    const std::wstring& given = browser_.delivered[0];
    ASSERT_TRUE(given.starts_with(start) && given.ends_with(end)) << given;
    const std::wstring link = given.substr(start.size(), given.size() - start.size() - end.size());
    if (!MakesLinks()) {
        EXPECT_EQ(link, Address() + L"a%20b.zip");
    }
    EXPECT_EQ(MakesLinks() ? CurlGet(link) : CurlGet(link, User(), Password()), "stored before");
    DeleteFileW((FilesOfServer() + L"\\a b.zip").c_str());
}

class WebDavLinks : public WebDavRequest {};
INSTANTIATE_TEST_SUITE_P(Servers, WebDavLinks, testing::Values("ocs"));

// The password is shown once and isn't in the text for the mail.
TEST_P(WebDavLinks, ShowThePasswordOnce) {
    AddDefaultAccount(Address(), true);
    std::wstring password;
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND dialog = AwaitDialogWith(OB_LINK_PASSWORD_TEXT);
        ASSERT_NE(dialog, nullptr);
        password = ItemText(dialog, OB_LINK_PASSWORD_TEXT);
        PressCommand(dialog, IDOK);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    EXPECT_GE(password.size(), 19u);
    ExpectLinkToZip(password);
    EXPECT_EQ(browser_.delivered[0].find(password), std::wstring::npos);
}

// The mail has the link and the user the link's password: nothing else keeps either of them.
TEST_P(WebDavLinks, AreInNoUsageRecordAndNoRegistryValue) {
    AddDefaultAccount(Address(), true);
    RemoveUsageRecord();
    std::wstring linkPassword;
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND dialog = AwaitDialogWith(OB_LINK_PASSWORD_TEXT);
        ASSERT_NE(dialog, nullptr);
        linkPassword = ItemText(dialog, OB_LINK_PASSWORD_TEXT);
        PressCommand(dialog, IDOK);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    const std::wstring link = ExpectLinkText();
    ASSERT_FALSE(link.empty() || linkPassword.empty());
    EXPECT_TRUE(WaitUntil([] { return HasText(UsageRecord(), L"feature.cloud"); }));
    const std::string usage = UsageRecord();
    const std::string registry = ProductRegistryBytes();
    ASSERT_TRUE(HasText(registry, User())); // the account is there
    for (const std::wstring& secret : {link, linkPassword, Password()}) {
        EXPECT_FALSE(HasText(usage, secret)) << usage;
        EXPECT_FALSE(HasText(registry, secret)) << secret;
    }
    for (const std::wstring& place : {Address(), std::wstring(L"127.0.0.1"), User()}) {
        EXPECT_FALSE(HasText(usage, place)) << usage;
    }
}

} // namespace
} // namespace obtest
