// The provider of network folders: its accounts, limits, links and deletions.
#include "services/providers/folder/NetworkFolder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"
#include "services/providers/folder/FolderCheck.h"
#include "services/providers/folder/FolderDialogIds.h"
#include "services/providers/folder/FolderFile.h"
#include "services/providers/storage/LocalDays.h"
#include "services/providers/storage/PartNotes.h"
#include "services/providers/storage/ProviderIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obcontract::ProviderCapability;
using obtest::DialogUiDriver;
using obtest::ItemText;

namespace {

constexpr wchar_t kPattern[] = L"https://h/{path}";

BOOL WINAPI OfFat32(const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t* name, DWORD) {
    return lstrcpyW(name, L"FAT32") != nullptr;
}

decltype(&RegSetValueExW) realWriteValue;
const wchar_t* refusedText; // the value that can't be written
LSTATUS WINAPI RefusingWrite(HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                             const BYTE* data, DWORD size) {
    const bool isText = type == REG_SZ;
    if (isText && std::wstring(reinterpret_cast<const wchar_t*>(data)) == refusedText) {
        return ERROR_ACCESS_DENIED;
    }
    return realWriteValue(key, name, reserved, type, data, size);
}

class NoProgress final : public UploadProgress {
public:
    void Show(std::uint64_t, std::uint64_t) override {}
    HANDLE Cancelled() const override { return never_.Get(); }
    bool Ask(const std::function<void(HWND)>&) override { return false; }

private:
    ObLib::UniqueKernelHandle never_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

class NetworkFolderTest : public testing::Test {
protected:
    NetworkFolderTest() { obtest::ClearProductRegistry(); }
    ~NetworkFolderTest() override { obtest::ClearProductRegistry(); }

    // The user fills the page in and presses the button.
    template <class Call>
    auto OnThePage(const std::wstring& folder, const std::wstring& pattern, int button, Call call) {
        DialogUiDriver user(OB_FOLDER_PATH, [&](HWND dialog) {
            SetDlgItemTextW(dialog, OB_FOLDER_PATH, folder.c_str());
            SetDlgItemTextW(dialog, OB_FOLDER_PATTERN, pattern.c_str());
            obtest::PressCommand(dialog, button);
        });
        return call();
    }
    std::optional<StorageAccount> LogIn(const std::wstring& folder,
                                        const std::wstring& pattern = kPattern, int button = IDOK,
                                        const std::wstring& key = L"") {
        return OnThePage(folder, pattern, button, [&] { return provider_.LogIn(key, nullptr); });
    }
    StoredFile Uploaded(const std::wstring& key) {
        NoProgress progress;
        const auto result = provider_.Upload(
            key, {run_.File(L"zip.tmp"), L"Our files.zip", L"Quillbox\\20261122101530"}, progress);
        EXPECT_EQ(result.end, UploadEnd::Done) << result.sentence;
        return result.stored;
    }
    std::vector<StorageAccount> Accounts() const { return book_.Accounts(kNetworkFolderId); }

    obtest::TestFolder parent_;
    obtest::TestFolder run_;
    std::wstring cloud_ = parent_.Folder(L"Our cloud");
    AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    NetworkFolder provider_{book_};
    ObLib::UniqueKernelHandle ended_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

TEST_F(NetworkFolderTest, IsWhatTheContractAsks) {
    EXPECT_EQ(provider_.Id(), 101U);
    EXPECT_EQ(provider_.DisplayName(), L"Network folder");
    EXPECT_EQ(provider_.ShortDescription(), L"Network folder");
    EXPECT_TRUE(provider_.Has(ProviderCapability::OpenPicker));
    EXPECT_TRUE(provider_.Has(ProviderCapability::FreeSpace));
    EXPECT_TRUE(provider_.Has(ProviderCapability::Folders));
    EXPECT_FALSE(provider_.Has(static_cast<ProviderCapability>(4)));
    EXPECT_EQ(provider_.RootFolder(L"any"), L"");
    EXPECT_FALSE(provider_.SetExpiry(L"any", L"", 7, ended_.Get()));
}

TEST_F(NetworkFolderTest, ALoginMakesAnAccountThatIsCalledAsItsFolder) {
    const auto account = LogIn(cloud_, kPattern);
    ASSERT_TRUE(account);
    EXPECT_EQ(account->label, L"Our cloud");
    EXPECT_TRUE(provider_.IsLoggedIn(account->key));
    ASSERT_EQ(Accounts().size(), 1U);
    EXPECT_EQ(Accounts()[0].key, account->key);
    EXPECT_TRUE(obtest::ListTree(parent_.Path()) == std::vector<std::wstring>{L"Our cloud\\"});
}

TEST_F(NetworkFolderTest, ACancelledLoginMakesNone) {
    EXPECT_FALSE(LogIn(cloud_, L"", IDCANCEL));
    EXPECT_TRUE(Accounts().empty());
}

TEST_F(NetworkFolderTest, ALoginToAKnownFolderIsThatAccount) {
    const auto first = LogIn(cloud_, kPattern);
    LogIn(parent_.Folder(L"Other"));
    std::wstring upper = cloud_;
    CharUpperW(upper.data());
    EXPECT_EQ(LogIn(upper)->key, first->key);
    EXPECT_EQ(Accounts().size(), 2U);
    EXPECT_EQ(book_.Text(kNetworkFolderId, first->key, L"LinkPattern"), kPattern);
    LogIn(cloud_, L"https://other/{path}");
    EXPECT_EQ(book_.Text(kNetworkFolderId, first->key, L"LinkPattern"), L"https://other/{path}");
}

TEST_F(NetworkFolderTest, ALoginToAnAccountChangesIt) {
    const auto account = LogIn(cloud_, kPattern);
    const auto changed = LogIn(parent_.Folder(L"Other"), kPattern, IDOK, account->key);
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->key, account->key);
    EXPECT_EQ(changed->label, L"Other");
    EXPECT_EQ(Accounts().size(), 1U);
}

TEST_F(NetworkFolderTest, ReportsAnAccountThatCannotBeSaved) {
    for (int number = 1; number <= 16; ++number) {
        ASSERT_TRUE(book_.Add(kNetworkFolderId, std::to_wstring(number)));
    }
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(LogIn(cloud_));
    ASSERT_EQ(boxes.Seen().size(), 1U);
    EXPECT_EQ(boxes.Seen()[0].text, L"The network folder can't be saved. Please try again.");
    EXPECT_EQ(Accounts().size(), 16U);
}

TEST_F(NetworkFolderTest, TheAccountPageChangesFolderAndPattern) {
    const auto account = LogIn(cloud_);
    const std::wstring other = parent_.Folder(L"Other");
    OnThePage(other, kPattern, IDOK, [&] { provider_.Manage(account->key, nullptr); });
    ASSERT_EQ(Accounts().size(), 1U);
    EXPECT_EQ(Accounts()[0].label, L"Other");
    EXPECT_EQ(book_.Text(kNetworkFolderId, account->key, L"Folder"), other);
    EXPECT_EQ(book_.Text(kNetworkFolderId, account->key, L"LinkPattern"), kPattern);
    OnThePage(cloud_, L"", IDCANCEL, [&] { provider_.Manage(account->key, nullptr); });
    EXPECT_EQ(book_.Text(kNetworkFolderId, account->key, L"Folder"), other);
}

TEST_F(NetworkFolderTest, AChangeThatCannotBeSavedWholeIsTakenBack) {
    const auto account = LogIn(cloud_, kPattern);
    const std::wstring other = parent_.Folder(L"Other");
    constexpr wchar_t kNewPattern[] = L"https://other/{path}";
    for (const std::wstring& refused : {other, std::wstring(kNewPattern), std::wstring(L"Other")}) {
        refusedText = refused.c_str();
        obtest::ImportPatch patch("advapi32.dll", "RegSetValueExW", &RefusingWrite);
        ASSERT_TRUE(patch.Ok());
        realWriteValue = patch.Real();
        EXPECT_FALSE(ChangeFolder(book_, account->key, {other, kNewPattern}));
        const auto left = ReadFolder(book_, account->key);
        ASSERT_TRUE(left);
        EXPECT_EQ(left->folder, cloud_) << refused;
        EXPECT_EQ(left->pattern, kPattern) << refused;
    }
}

TEST_F(NetworkFolderTest, ReportsAPickThatCannotBegin) {
    const auto account = LogIn(cloud_);
    book_.SetText(kNetworkFolderId, account->key, L"Folder", L"..\\x");
    const PickResult picked = provider_.Pick(account->key, nullptr);
    EXPECT_TRUE(picked.files.empty());
    EXPECT_EQ(picked.sentence, L"Your files in the cloud can't be shown. Please try again.");
}

TEST_F(NetworkFolderTest, TheAccountPageLogsOut) {
    const auto account = LogIn(cloud_);
    const StoredFile stored = Uploaded(account->key);
    OnThePage(cloud_, L"", OB_FOLDER_LOG_OUT, [&] { provider_.Manage(account->key, nullptr); });
    EXPECT_TRUE(Accounts().empty());
    EXPECT_FALSE(provider_.IsLoggedIn(account->key));
    EXPECT_EQ(VersionAt(cloud_ + L"\\Quillbox\\20261122101530\\Our files.zip"), stored.version);
    provider_.Manage(account->key, nullptr); // shows nothing
}

TEST_F(NetworkFolderTest, TheAccountPageTakesNoFolderOfAnotherAccount) {
    const auto account = LogIn(cloud_);
    const std::wstring other = parent_.Folder(L"Other");
    LogIn(other);
    const obtest::MessageBoxWatcher boxes;
    DialogUiDriver user(OB_FOLDER_PATH, [&](HWND dialog) {
        SetDlgItemTextW(dialog, OB_FOLDER_PATH, other.c_str());
        obtest::PressCommand(dialog, IDOK);
        EXPECT_TRUE(boxes.WaitFor(1));
        obtest::PressCommand(dialog, IDCANCEL);
    });
    provider_.Manage(account->key, nullptr);
    ASSERT_EQ(boxes.Seen().size(), 1U);
    EXPECT_EQ(boxes.Seen()[0].text, L"The folder \u201C" + other +
                                        L"\u201D is among your accounts already. Please choose "
                                        L"another folder.");
    EXPECT_EQ(book_.Text(kNetworkFolderId, account->key, L"Folder"), cloud_);
}

TEST_F(NetworkFolderTest, IsLoggedInWithoutALookAtTheFolder) {
    const auto account = LogIn(cloud_);
    obtest::RemoveTree(cloud_);
    EXPECT_TRUE(provider_.IsLoggedIn(account->key));
    provider_.LogOut(account->key, nullptr);
    EXPECT_FALSE(provider_.IsLoggedIn(account->key));
    EXPECT_FALSE(provider_.IsLoggedIn(L""));
}

TEST_F(NetworkFolderTest, ReportsTheSpaceOfItsVolume) {
    const auto account = LogIn(cloud_);
    ULARGE_INTEGER total{};
    ASSERT_TRUE(GetDiskFreeSpaceExW((cloud_ + L"\\").c_str(), nullptr, &total, nullptr));
    const auto space = provider_.Space(account->key, ended_.Get());
    ASSERT_TRUE(space);
    EXPECT_EQ(space->totalBytes, static_cast<std::int64_t>(total.QuadPart));
    EXPECT_GT(space->freeBytes, 0);
    EXPECT_LE(space->freeBytes, space->totalBytes);
    obtest::RemoveTree(cloud_);
    EXPECT_FALSE(provider_.Space(account->key, ended_.Get()));
    EXPECT_FALSE(provider_.Space(L"none", ended_.Get()));
}

TEST_F(NetworkFolderTest, ReportsTheLimitOfItsFileSystem) {
    const auto account = LogIn(cloud_);
    EXPECT_FALSE(provider_.MaxFileSize(account->key));
    EXPECT_FALSE(provider_.MaxFileSize(L"none"));
    obtest::ImportPatch patch("kernel32.dll", "GetVolumeInformationW", &OfFat32);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(provider_.MaxFileSize(account->key), 0xFFFFFFFFU);
}

TEST_F(NetworkFolderTest, SharesByThePatternOrByTheFilesOwnAddress) {
    const auto account = LogIn(cloud_, kPattern);
    const StoredFile stored = Uploaded(account->key);
    const ShareResult shared = provider_.Share(account->key, stored, ended_.Get());
    EXPECT_TRUE(shared.isShared);
    EXPECT_EQ(shared.link, L"https://h/Quillbox/20261122101530/Our%20files.zip");
    EXPECT_EQ(shared.password, L"");
    EXPECT_EQ(shared.shareId, L"");
    book_.SetText(kNetworkFolderId, account->key, L"LinkPattern", L"");
    const std::wstring link = provider_.Share(account->key, stored, ended_.Get()).link;
    EXPECT_TRUE(link.starts_with(L"file:///C:/")) << link;
    EXPECT_TRUE(link.ends_with(L"/Our%20cloud/Quillbox/20261122101530/Our%20files.zip")) << link;
}

TEST_F(NetworkFolderTest, SharesNothingOfAFolderThatIsLoggedOut) {
    const auto account = LogIn(cloud_);
    const StoredFile stored = Uploaded(account->key);
    provider_.LogOut(account->key, nullptr);
    const ShareResult shared = provider_.Share(account->key, stored, ended_.Get());
    EXPECT_FALSE(shared.isShared);
    EXPECT_EQ(shared.link, L"");
    EXPECT_EQ(shared.sentence,
              L"Its network folder is no longer among your accounts. Please add the folder again.");
}

TEST_F(NetworkFolderTest, UploadsNothingToAFolderThatIsLoggedOut) {
    NoProgress progress;
    const auto result =
        provider_.Upload(L"none", {run_.File(L"zip.tmp"), L"Files.zip", L""}, progress);
    EXPECT_EQ(result.end, UploadEnd::Failed);
    EXPECT_EQ(
        result.sentence,
        L"\u201CFiles.zip\u201D wasn't uploaded, because its network folder is no longer among "
        L"your accounts. Nothing was attached, and your files are unchanged. Please choose "
        L"another account.");
}

// The mail promised it.
TEST_F(NetworkFolderTest, DeletesAlsoAfterALogout) {
    const auto account = LogIn(cloud_);
    const StoredFile stored = Uploaded(account->key);
    provider_.LogOut(account->key, nullptr);
    EXPECT_EQ(provider_.Delete(account->key, stored, ended_.Get()), DeletionEnd::Gone);
    EXPECT_TRUE(obtest::ListTree(cloud_).empty());
}

// A process that was killed in the middle of an upload has left a part and its note.
TEST_F(NetworkFolderTest, RemovesThePartOfAnUploadThatWasKilled) {
    const auto account = LogIn(cloud_);
    ASSERT_TRUE(account);
    const PartNotes notes(book_);
    const std::wstring part = PartName();
    parent_.File(L"Our cloud\\" + part, "half");
    ASSERT_NE(notes.Add({kNetworkFolderId, account->key, L"0|" + cloud_ + L"|" + part}), L"");
    Uploaded(account->key);
    const auto left = notes.OldAt(TimeNow() + 2 * kOldPart);
    ASSERT_EQ(left.size(), 1U) << "the upload's own note has gone";
    provider_.LogOut(account->key, nullptr);
    SetEvent(ended_.Get());
    EXPECT_EQ(provider_.RemovePart(account->key, left[0].path, ended_.Get()),
              DeletionEnd::Unreachable);
    ResetEvent(ended_.Get());
    EXPECT_EQ(provider_.RemovePart(account->key, left[0].path, ended_.Get()), DeletionEnd::Gone);
    EXPECT_FALSE(obtest::FileExists(cloud_ + L"\\" + part));
    EXPECT_EQ(obtest::ListTree(cloud_).size(), 3U);
}

TEST_F(NetworkFolderTest, DeletesNothingOnceTheSessionHasEnded) {
    const auto account = LogIn(cloud_);
    const StoredFile stored = Uploaded(account->key);
    SetEvent(ended_.Get());
    EXPECT_EQ(provider_.Delete(account->key, stored, ended_.Get()), DeletionEnd::Unreachable);
    EXPECT_EQ(obtest::ListTree(cloud_).size(), 3U);
}

TEST_F(NetworkFolderTest, ADamagedAccountCountsAsNone) {
    const auto account = LogIn(cloud_, kPattern);
    book_.SetText(kNetworkFolderId, account->key, L"LinkPattern", L"https://h/ {path}");
    const StoredFile stored = Uploaded(account->key);
    EXPECT_TRUE(provider_.Share(account->key, stored, ended_.Get()).link.starts_with(L"file:"));
    book_.SetText(kNetworkFolderId, account->key, L"Folder", L"..\\x");
    EXPECT_FALSE(provider_.IsLoggedIn(account->key));
    EXPECT_FALSE(provider_.Share(account->key, stored, ended_.Get()).isShared);
}

} // namespace
