// Whole requests with accounts of a real WebDAV server in which something goes wrong or the user
// changes their mind.
#include <commctrl.h>

#include "OBCore/modules/DialogIds.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "tests/e2e/WebDavRequest.h"

namespace obtest {
namespace {

class WebDavTrouble : public WebDavRequest {
protected:
    // Whatever the request has made is the one zip of the temporary folder.
    void ExpectOnlyTheZip() const {
        EXPECT_EQ(browser_.delivered, Texts{});
        const Texts left = LeftInTemp();
        const auto isZip = [](const std::wstring& path) { return path.ends_with(L"\\large.zip"); };
        EXPECT_EQ(std::ranges::count_if(left, isZip), 1);
        EXPECT_EQ(AllStored(), Texts{});
    }
    std::ptrdiff_t CountOf(const char* method) const {
        return std::ranges::count_if(relay_.Requests(), [&](const std::string& request) {
            return request.starts_with(std::string(method) + " ");
        });
    }

    const Relay relay_{"ocs"};
};

INSTANTIATE_TEST_SUITE_P(Servers, WebDavTrouble, testing::Values("ocs"));

// The server has gone before anything was sent.
TEST_P(WebDavTrouble, OfAServerThatHasGoneLeavesNothing) {
    AddDefaultAccount(AddressOfRelay());
    relay_.On("*", "refuse", 0, 1000);
    const std::wstring file = LargeFile();
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    EXPECT_EQ(AskOpen().result, FALSE);
    EXPECT_TRUE(driver.Done());
    ExpectNotUploaded(boxes, L"The connection to the server \u201C127.0.0.1\u201D broke off. "
                             L"Please try again.");
    EXPECT_TRUE(ReadFileContent(file) == LargeContent());
    EXPECT_EQ(LeftInTemp(), Texts{});
    EXPECT_EQ(AllStored(), Texts{});
}

// Something of that name has come to the server meanwhile: the second run moves what is there.
TEST_P(WebDavTrouble, OfAClashGivesTheZipAnotherNameAndSendsItOnce) {
    AddDefaultAccount(AddressOfRelay());
    relay_.On("MOVE", "status 412", 0, 1);
    isStamped_ = true;
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectLinkToZip();
    EXPECT_EQ(name_.size(), std::size(L"largeYYYYMMDDhhmmss.zip") - 1) << name_;
    EXPECT_TRUE(name_.starts_with(L"large20") && name_.ends_with(L".zip")) << name_;
    EXPECT_EQ(CountOf("PUT"), 1);
    EXPECT_EQ(CountOf("MOVE"), 2);
}

TEST_P(WebDavTrouble, OfALinkIsOverWhenTheUserTriesAgain) {
    AddDefaultAccount(AddressOfRelay());
    relay_.On("POST", "status 500", 0, 1);
    MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    boxes.AnswerWith(IDRETRY);
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"large.zip"), std::wstring::npos) << boxes.Seen()[0].text;
    ExpectLinkToZip();
    EXPECT_EQ(CountOf("PUT"), 1);
    EXPECT_EQ(shares_.Shares().size(), 1u);
}

TEST_P(WebDavTrouble, OfAPasswordThatIsRevokedAfterTheUploadEndsWithTheLogin) {
    AddDefaultAccount(AddressOfRelay());
    relay_.On("POST", "status 401", 0, 1);
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND login = AwaitDialogWith(OB_DAV_ADDRESS);
        ASSERT_NE(login, nullptr);
        SetText(GetDlgItem(login, OB_DAV_PASSWORD), Password());
        PressCommand(login, IDOK);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    EXPECT_TRUE(boxes.Seen().empty());
    ExpectLinkToZip();
    EXPECT_EQ(CountOf("PUT"), 1);
    EXPECT_EQ(shares_.Shares().size(), 1u);
}

TEST_P(WebDavTrouble, OfChoosingNoAccountLeavesTheZip) {
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND chooser = AwaitDialogWith(OB_CHOOSER_LIST);
        ASSERT_NE(chooser, nullptr);
        PressCommand(chooser, IDCANCEL);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectOnlyTheZip();
}

// One account's server gives no reply while the chooser asks for its space.
TEST_P(WebDavTrouble, OfASilentServerLeavesTheOtherAccountUsable) {
    AddAccount(AddressOfRelay());
    const std::wstring sound = AddAccount(Address());
    const auto accounts = book_.Accounts(providers::kWebDavId);
    ASSERT_EQ(accounts.size(), 2u);
    const int row = accounts[0].key == sound ? 1 : 2; // after that of the network folder
    relay_.On("*", "hold", 0, 1000);
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND chooser = AwaitDialogWith(OB_CHOOSER_LIST);
        ASSERT_NE(chooser, nullptr);
        const HWND list = GetDlgItem(chooser, OB_CHOOSER_LIST);
        EXPECT_EQ(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0), 3);
        PostMessageW(list, WM_KEYDOWN, VK_HOME, 1);
        for (int down = 0; down < row; ++down) PostMessageW(list, WM_KEYDOWN, VK_DOWN, 1);
        PostMessageW(list, WM_KEYDOWN, VK_SPACE, 1);
        const HWND button = GetDlgItem(chooser, OB_CHOOSER_CONTINUE);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(button) != 0; }));
        Click(button);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    relay_.Release();
    EXPECT_FALSE(relay_.Requests().empty());
    ExpectLinkToZip();
    EXPECT_EQ(store_.DefaultProfile().accountKey, sound);
}

} // namespace
} // namespace obtest
