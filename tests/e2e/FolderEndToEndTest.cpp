// Whole requests whose zip is too large for a mail, with a network folder as the cloud account:
// everything is real. The page gets the text with the link, and the folder gets the bytes.
#include <gmock/gmock.h>

#include <algorithm>

#include "OBCore/modules/DialogIds.h"
#include "contracts/ProviderManager.h"
#include "services/providers/AccountStore.h"
#include "services/providers/folder/FolderAccount.h"
#include "services/providers/folder/FolderDialogIds.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/storage/RecordTexts.h"
#include "tests/e2e/CloudRequest.h"
#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"

namespace obtest {
namespace {

using testing::IsEmpty;
using Texts = std::vector<std::wstring>;

constexpr wchar_t kPattern[] = L"https://files.example.com/{path}";
constexpr int kCloudButton = 3011;

class FolderEndToEnd : public RealRequest {
protected:
    void SetUp() override {
        RealRequest::SetUp();
        cloud_ = files_.Folder(L"Our cloud");
    }

    providers::StorageAccount AddAccount(const std::wstring& pattern = kPattern) {
        const auto account = providers::AddFolder(book_, {cloud_, pattern});
        EXPECT_TRUE(account);
        return *account;
    }
    void AddDefaultAccount(const std::wstring& pattern = kPattern) {
        const auto profile = providers::ProfileOf(providers::kNetworkFolderId, AddAccount(pattern));
        ASSERT_TRUE(store_.SaveDefaultProfile(profile));
    }
    std::wstring LargeFile() const { return files_.File(L"large.bin", LargeContent()); }

    // The one file of the folder, below the folders that the request made for it.
    std::wstring Stored(const std::wstring& name) {
        const Texts tree = ListTree(cloud_);
        EXPECT_EQ(tree.size(), 3u);
        if (tree.size() != 3) return {};
        EXPECT_EQ(tree[0], L"Quillbox\\");
        EXPECT_TRUE(tree[2].ends_with(L"\\" + name)) << tree[2];
        return tree[2];
    }
    // What the page was handed, field by field.
    void ExpectLink(const std::wstring& name, const std::wstring& link) {
        ASSERT_FALSE(browser_.delivered.empty());
        const std::wstring start = L"link ";
        ASSERT_TRUE(browser_.delivered[0].starts_with(start)) << browser_.delivered[0];
        const Texts fields = FieldsOf(browser_.delivered[0].substr(start.size()));
        ASSERT_EQ(fields.size(), 10u);
        EXPECT_EQ(fields[0], L"0");
        EXPECT_EQ(fields[1], L" ");
        EXPECT_EQ(fields[2], name);
        EXPECT_EQ(fields[3], link);
        EXPECT_EQ(fields[4], L"Shared from: Network folder");
        EXPECT_EQ(fields[5], Text(131));
        EXPECT_EQ(fields[6], Text(132));
        EXPECT_EQ(fields[7], Text(133));
        EXPECT_EQ(fields[8], Text(134));
        EXPECT_EQ(fields[9], L"#POPUP_MESSAGE_BEGIN#" + Text(160) + L"#POPUP_MESSAGE_END#");
        EXPECT_THAT(browser_.OwnDialogs(), IsEmpty());
    }
    void ExpectLinkToZip() {
        const std::wstring stored = Stored(L"large.zip");
        std::wstring below = stored;
        std::ranges::replace(below, L'\\', L'/');
        ExpectLink(L"large.zip", L"https://files.example.com/" + below);
        const auto entries = ReadZip(cloud_ + L"\\" + stored);
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_TRUE(entries.at("large.bin").content == LargeContent());
        ASSERT_TRUE(browser_.cleanupFile); // the zip that was uploaded
        EXPECT_EQ(ReadFileContent(*browser_.cleanupFile), ReadFileContent(cloud_ + L"\\" + stored));
    }
    void ExpectUploadFails(const MessageBoxWatcher& boxes, const std::wstring& name) {
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_EQ(boxes.Seen()[0].caption, L"Ombrix Vellant");
        EXPECT_EQ(boxes.Seen()[0].text,
                  L"\u201C" + name + L"\u201D wasn't uploaded, because the folder \u201C" + cloud_ +
                      L"\u201D can't be reached. Nothing was attached, and your files are "
                      L"unchanged. Please make sure that the folder opens in Explorer and try "
                      L"again.");
        EXPECT_THAT(browser_.delivered, testing::Each(testing::Not(testing::StartsWith(L"link"))));
        EXPECT_FALSE(FileExists(cloud_));
    }

    std::wstring cloud_;
    providers::AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    providers::AccountStore store_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
};

TEST_F(FolderEndToEnd, OnTheOpenFileNamePathLinksAZipInTheDefaultFolder) {
    AddDefaultAccount();
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, Texts{});
    ExpectLinkToZip();
}

TEST_F(FolderEndToEnd, OnTheDialogPathLinksAZipInTheDefaultFolder) {
    AddDefaultAccount();
    PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectLinkToZip();
}

TEST_F(FolderEndToEnd, ChoosesTheAccountWithoutADefault) {
    AddAccount();
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND chooser = AwaitDialogWith(OB_CHOOSER_LIST);
        ASSERT_NE(chooser, nullptr);
        PostMessageW(GetDlgItem(chooser, OB_CHOOSER_LIST), WM_KEYDOWN, VK_SPACE, 1);
        const HWND button = GetDlgItem(chooser, OB_CHOOSER_CONTINUE);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(button) != 0; }));
        EXPECT_EQ(TextOf(button), Text(139));
        Click(button);
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectLinkToZip();
}

// What a user without any account goes through.
TEST_F(FolderEndToEnd, AddsAFolderInTheChooserAndLinksAZipInIt) {
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Zip, {LargeFile()})(picker);
        const HWND chooser = AwaitDialogWith(OB_CHOOSER_LIST);
        ASSERT_NE(chooser, nullptr);
        PostMessageW(GetDlgItem(chooser, OB_CHOOSER_LIST), WM_KEYDOWN, VK_SPACE, 1);
        const HWND button = GetDlgItem(chooser, OB_CHOOSER_CONTINUE);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(button) != 0; }));
        EXPECT_EQ(TextOf(button), Text(138));
        Click(button);
        const HWND page = AwaitDialogWith(OB_FOLDER_PATH);
        ASSERT_NE(page, nullptr);
        SetText(GetDlgItem(page, OB_FOLDER_PATH), cloud_);
        SetText(GetDlgItem(page, OB_FOLDER_PATTERN), kPattern);
        PressCommand(page, IDOK);
    });
    const OpenAnswer answer = AskOpen();
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(answer.result, FALSE);
    ExpectLinkToZip();
    const auto accounts = book_.Accounts(providers::kNetworkFolderId);
    ASSERT_EQ(accounts.size(), 1u);
    EXPECT_EQ(accounts[0].label, L"Our cloud");
    EXPECT_EQ(store_.DefaultProfile().accountKey, accounts[0].key);
}

TEST_F(FolderEndToEnd, LinksAPickedArchiveAndLeavesItWhereItIs) {
    AddDefaultAccount(L"");
    const std::wstring archive = files_.File(L"large.zip", LargeContent());
    PickerUiDriver driver(Pick(Choice::Zip, {archive}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    const std::wstring stored = Stored(L"large.zip");
    EXPECT_TRUE(ReadFileContent(cloud_ + L"\\" + stored) == LargeContent());
    EXPECT_TRUE(ReadFileContent(archive) == LargeContent());
    std::wstring link = L"file:///" + cloud_ + L"\\" + stored;
    std::ranges::replace(link, L'\\', L'/');
    ExpectLink(L"large.zip", link.replace(link.find(L"Our cloud"), 9, L"Our%20cloud"));
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(FolderEndToEnd, OnTheOpenFileNamePathLeavesNothingOfAFailedUpload) {
    AddDefaultAccount();
    RemoveTree(cloud_);
    const std::wstring file = LargeFile();
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    EXPECT_EQ(AskOpen().result, FALSE);
    EXPECT_TRUE(driver.Done());
    ExpectUploadFails(boxes, L"large.zip");
    EXPECT_TRUE(ReadFileContent(file) == LargeContent());
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(FolderEndToEnd, OnTheDialogPathLeavesNothingOfAFailedUpload) {
    AddDefaultAccount();
    RemoveTree(cloud_);
    const std::wstring archive = files_.File(L"large.zip", LargeContent());
    const std::wstring canary = files_.File(L"canary.txt", "canary");
    const MessageBoxWatcher boxes(MessageBoxWatcher::Scope::AllProcesses);
    PickerUiDriver driver(Pick(Choice::Zip, {archive}));
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ExpectUploadFails(boxes, L"large.zip");
    EXPECT_TRUE(ReadFileContent(archive) == LargeContent());
    EXPECT_EQ(ReadFileContent(canary), "canary");
    EXPECT_EQ(LeftInTemp(), Texts{});
}

TEST_F(FolderEndToEnd, AttachesAZipThatFitsTheMail) {
    AddDefaultAccount();
    PickerUiDriver driver(Pick(Choice::Zip, {files_.File(L"small.txt")}));
    ASSERT_EQ(AskShow(), S_OK);
    EXPECT_TRUE(driver.Done());
    EXPECT_EQ(ListTree(cloud_), Texts{});
}

TEST_F(FolderEndToEnd, LinksWhatIsThereAlreadyByTheCloudButton) {
    AddDefaultAccount();
    WriteFileContent(cloud_ + L"\\a b.zip", "stored before");
    PickerUiDriver driver([&](OpenPicker& picker) {
        const HWND button = GetDlgItem(picker.Window(), kCloudButton);
        EXPECT_TRUE(WaitUntil([=] { return IsWindowEnabled(button) != 0; }));
        Click(button);
        const HWND cloud = WaitForTopWindow(
            [](HWND window) { return TextOf(window) == L"Link files of a network folder"; });
        ASSERT_NE(cloud, nullptr);
        EXPECT_EQ(GetDlgItem(cloud, kCloudButton), nullptr);
        EXPECT_TRUE(OpenPicker(cloud).TypeNames(L"a b.zip"));
        OpenPicker(cloud).PressOk();
    });
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_TRUE(driver.Done());
    ASSERT_FALSE(browser_.delivered.empty());
    EXPECT_EQ(browser_.delivered[0], L"link ||a b.zip https://files.example.com/a%20b.zip|||" +
                                         Text(150) + L" *: |||Network folder||");
    EXPECT_EQ(ListTree(cloud_), Texts{L"a b.zip"});
}

} // namespace
} // namespace obtest
