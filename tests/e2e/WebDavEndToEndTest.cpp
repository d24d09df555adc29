// Whole requests whose zip is too large for a mail, with accounts of real WebDAV servers:
// everything is real. The page gets the text with the link, and the link gives the bytes.
#include <gmock/gmock.h>

#include <algorithm>

#include "OBCore/modules/DialogIds.h"
#include "contracts/ProviderManager.h"
#include "services/providers/AccountStore.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/webdav/DavAccount.h"
#include "services/providers/webdav/DavDialogIds.h"
#include "services/providers/webdav/DavPickerIds.h"
#include "tests/e2e/CloudRequest.h"
#include "tests/e2e/Curl.h"
#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/CloudServers.h"

namespace obtest {
namespace {

using testing::IsEmpty;
using Texts = std::vector<std::wstring>;

constexpr int kCloudButton = 3011;

// One run of a test for each server.
class WebDavEndToEnd : public RealRequest, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        shares_.Begin();
    }
    void TearDown() override {
        RemoveTree(FilesOfServer() + L"\\Quillbox");
        for (const auto& account : book_.Accounts(providers::kWebDavId)) {
            providers::RemoveDavAccount(book_, account.key);
        }
        RealRequest::TearDown();
    }

    bool MakesLinks() const { return GetParam() == std::string("ocs"); }
    std::wstring Value(const wchar_t* name) const {
        std::wstring value;
        for (const char* c = GetParam(); *c; ++c) value += static_cast<wchar_t>(*c - 'a' + 'A');
        return ServerValue((value + name).c_str());
    }
    std::wstring Address() const { return Value(L"_URL"); }
    std::wstring FilesOfServer() const { return Value(L"_FILES"); }
    std::wstring User() const { return ServerValue(L"SERVER_USER"); }
    std::wstring Password() const { return ServerValue(L"SERVER_PASSWORD"); }
    // The server itself, where it makes no links.
    std::wstring Pattern() const { return MakesLinks() ? L"" : Address() + L"{path}"; }

    void AddDefaultAccount(const std::wstring& address, bool hasPasswords = false) {
        const auto root = providers::ParseHttpUrl(providers::ToUtf8(address));
        ASSERT_TRUE(root);
        const auto account =
            providers::AddDavAccount(book_, {*root, User(), Pattern(), hasPasswords},
                                     ObLib::Secret(providers::ToUtf8(Password()).c_str()));
        ASSERT_TRUE(account);
        ASSERT_TRUE(
            store_.SaveDefaultProfile(providers::ProfileOf(providers::kWebDavId, *account)));
    }
    std::wstring LargeFile() const { return files_.File(L"large.bin", LargeContent()); }

    // The one file of the server, below the folders that the request made for it.
    std::wstring Stored() const {
        Texts tree = ListTree(FilesOfServer());
        std::erase_if(tree, [](const std::wstring& path) {
            return !path.starts_with(L"Quillbox\\") || path.find(L"\\.") != std::wstring::npos ||
                   path.ends_with(L"\\");
        });
        EXPECT_EQ(tree.size(), 1u);
        return tree.empty() ? L"" : tree[0];
    }
    // What the page was handed, field by field; the link.
    std::wstring ExpectLinkText() {
        EXPECT_FALSE(browser_.delivered.empty());
        if (browser_.delivered.empty()) return {};
        const std::wstring start = L"link ";
        EXPECT_TRUE(browser_.delivered[0].starts_with(start)) << browser_.delivered[0];
        const Texts fields = FieldsOf(browser_.delivered[0].substr(start.size()));
        EXPECT_EQ(fields.size(), 10u);
        if (fields.size() != 10) return {};
        EXPECT_EQ(fields[0], L"0");
        EXPECT_EQ(fields[1], L" ");
        EXPECT_EQ(fields[2], L"large.zip");
        EXPECT_EQ(fields[4], L"Shared from: WebDAV server");
        EXPECT_EQ(fields[5], Text(131));
        EXPECT_EQ(fields[6], Text(132));
        EXPECT_EQ(fields[7], Text(133));
        EXPECT_EQ(fields[8], Text(134));
        EXPECT_EQ(fields[9], L"#POPUP_MESSAGE_BEGIN#" + Text(160) + L"#POPUP_MESSAGE_END#");
        EXPECT_THAT(browser_.OwnDialogs(), IsEmpty());
        return fields[3];
    }
    // The link of the page gives others the bytes that the server has, which are the zip.
    void ExpectLinkToZip(const std::wstring& linkPassword = L"") {
        const std::wstring link = ExpectLinkText();
        const std::wstring stored = Stored();
        EXPECT_TRUE(stored.ends_with(L"\\large.zip")) << stored;
        std::wstring below = stored;
        std::ranges::replace(below, L'\\', L'/');
        if (!MakesLinks()) {
            EXPECT_EQ(link, Address() + below);
        }
        const auto bytes =
            MakesLinks() ? CurlGet(link, linkPassword.empty() ? L"" : L"anybody", linkPassword)
                         : CurlGet(link, User(), Password());
        ASSERT_TRUE(bytes);
        EXPECT_TRUE(bytes == ReadFileContent(FilesOfServer() + L"\\" + stored));
        ASSERT_TRUE(browser_.cleanupFile); // the zip that was uploaded
        EXPECT_TRUE(bytes == ReadFileContent(*browser_.cleanupFile));
        const auto entries = ReadZip(*browser_.cleanupFile);
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_TRUE(entries.at("large.bin").content == LargeContent());
    }
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

    ShareServer shares_;
    providers::AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    providers::AccountStore store_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
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

// A server that has gone: nothing is attached, and nothing is lost.
TEST_P(WebDavEndToEnd, LeavesNothingOfAFailedUpload) {
    const Relay relay(GetParam());
    std::wstring address = ServerValue(L"RELAY_URL");
    if (MakesLinks()) address.replace(address.find(L"/dav/"), 5, L"/cloud/remote.php/webdav/");
    AddDefaultAccount(address);
    relay.On("PUT", "status 507", 0, 100);
    const std::wstring archive = files_.File(L"large.zip", LargeContent());
    const std::wstring canary = files_.File(L"canary.txt", "canary");
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {archive}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].caption, L"Ombrix Vellant");
    EXPECT_EQ(boxes.Seen()[0].text,
              L"\u201Clarge.zip\u201D wasn't uploaded. There is too little free space on the "
              L"server \u201C127.0.0.1\u201D. Please delete files there, or choose another "
              L"account. Nothing was attached, and your files are unchanged.");
    EXPECT_THAT(browser_.delivered, testing::Each(testing::Not(testing::StartsWith(L"link"))));
    EXPECT_TRUE(ReadFileContent(archive) == LargeContent());
    EXPECT_EQ(ReadFileContent(canary), "canary");
    EXPECT_EQ(LeftInTemp(), Texts{});
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

class WebDavLinks : public WebDavEndToEnd {};
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

} // namespace
} // namespace obtest
