// What every provider manager has to return for its storage providers: the real manager, with
// providers that answer from a script, and the fake, which answers from the same script.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "OBCore/cloud/CloudUploadCallBack.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ProductRegistry.h"

namespace {

using namespace obcontract;
using namespace obcore;
using obtest::FakeModules;
using On = slots::OnCloudProvider;
using OnDownloads = slots::OnDownloadList;
using OnUploads = slots::OnUploadList;

constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
constexpr wchar_t kOne[] = L"{11111111-1111-1111-1111-111111111111}";
constexpr wchar_t kTwo[] = L"{22222222-2222-2222-2222-222222222222}";
constexpr auto kStorage = ProviderKind::Storage;

class StorageContract : public testing::Test {
protected:
    void SetUp() override {
        FakeModules::Reset();
        obtest::ClearProductRegistry();
        FakeModules::Answer(L"Providers", L"7,21");
        FakeModules::Answer(L"provider7.GetAccountProfiles",
                            std::wstring(L"one|") + kOne + L";two|" + kTwo);
        AddAccount(kOne, L"one", 1);
        AddAccount(kTwo, L"two", 2);
        ASSERT_TRUE(LoadProviderManager());
    }
    void TearDown() override {
        if (!manager_) return;
        Entries().Deinit(manager_);
        Entries().DeleteObExtensionsManager(manager_);
    }

    // Where the real manager keeps accounts; the fake has them in its script.
    static void AddAccount(const wchar_t* key, const wchar_t* label, std::uint64_t order) {
        const std::wstring path = std::wstring(kProviderManagerKey) + L"\\Accounts\\7\\" + key;
        obtest::SetValue(HKEY_CURRENT_USER, path, L"Label", label);
        obtest::SetRawValue(HKEY_CURRENT_USER, path, L"Order", REG_QWORD, &order, sizeof(order));
    }

    static const ProviderManagerEntries& Entries() { return ProviderManager(); }

    // Provider 7, of a manager that has read the script.
    CloudProvider* Begin() {
        manager_ = Entries().CreateObExtensionsManager();
        Entries().Init(manager_, kCurrentUser, kProviderManagerKey);
        CloudProvider* provider = Entries().GetProviderInstance(manager_, 7, kStorage);
        EXPECT_NE(provider, nullptr);
        return provider;
    }

    static std::vector<CloudItem> ItemsOf(UploadList* list) {
        std::vector<CloudItem> items;
        CloudItem item{};
        while (OnUploads::GetItem::Call(list, static_cast<std::uint32_t>(items.size()), &item)) {
            items.push_back(item);
        }
        return items;
    }
    static Bool Run(CloudProvider* provider, UploadList* list) {
        return On::RunUpload::Call(provider, list, nullptr, L"title", L"body", 1, 0, 1, 1, 1,
                                   nullptr);
    }
    static UploadList* ListOf(CloudProvider* provider, const wchar_t* name) {
        UploadList* list = On::CreateUploadList::Call(provider, kOne);
        OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", name, 0, 0, L"");
        return list;
    }
    static std::wstring ErrorOf(CloudProvider* provider, std::uint64_t capacity) {
        std::vector<wchar_t> buffer(static_cast<std::size_t>(capacity) + 1, L'#');
        Entries().GetLastErrorOfProvider(provider, kOne, L"a.zip", buffer.data(), &capacity);
        EXPECT_EQ(buffer[static_cast<std::size_t>(capacity)], L'#') << "past the capacity";
        return buffer.data();
    }

    ProviderManagerHandle manager_ = nullptr;
};

TEST_F(StorageContract, WalksItsProvidersInTheirOrderAndAgainAfterAReset) {
    Begin();
    for (int walk = 0; walk < 2; ++walk) {
        Entries().EnumProvidersReset(manager_);
        for (const std::uint32_t id : {7u, 21u}) {
            CloudProvider* provider = Entries().EnumStorageProviders(manager_);
            ASSERT_NE(provider, nullptr);
            EXPECT_EQ(On::GetProviderId::Call(provider), id);
            EXPECT_EQ(provider, Entries().GetProviderInstance(manager_, id, kStorage));
        }
        EXPECT_EQ(Entries().EnumStorageProviders(manager_), nullptr);
        EXPECT_EQ(Entries().EnumStorageProviders(manager_), nullptr);
    }
}

TEST_F(StorageContract, SupportsTheProvidersThatItHas) {
    Begin();
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, 7, kStorage));
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, 7, ProviderKind::Transform));
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, 8, kStorage));
    EXPECT_EQ(Entries().GetProviderInstance(manager_, 8, kStorage), nullptr);
    EXPECT_EQ(Entries().GetProviderInstance(manager_, 7, ProviderKind::Transform), nullptr);
}

TEST_F(StorageContract, HasNoProviderAfterDeinit) {
    Begin();
    Entries().Deinit(manager_);
    EXPECT_EQ(Entries().GetProviderInstance(manager_, 7, kStorage), nullptr);
    EXPECT_EQ(Entries().EnumStorageProviders(manager_), nullptr);
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, 7, kStorage));
}

TEST_F(StorageContract, DescribesAProvider) {
    FakeModules::Answer(L"provider7.GetDisplayName", L"My cloud");
    FakeModules::Answer(L"provider7.GetShortDescription", L"Files in my cloud");
    FakeModules::Answer(L"provider7.HasCapability", L"1026");
    CloudProvider* provider = Begin();
    wchar_t text[128] = L"";
    std::uint32_t capacity = 128;
    On::GetDisplayName::Call(provider, kStorage, text, &capacity);
    EXPECT_STREQ(text, L"My cloud");
    Entries().GetShortDescription(provider, 1, text, &capacity);
    EXPECT_STREQ(text, L"Files in my cloud");
    capacity = 4;
    On::GetDisplayName::Call(provider, kStorage, text, &capacity);
    EXPECT_STREQ(text, L"My ");
    Entries().GetShortDescription(provider, 1, text, &capacity);
    EXPECT_STREQ(text, L"Fil");
    const auto has = [&](ProviderCapability mask) {
        return On::HasCapability::Call(provider, kStorage, mask) != 0;
    };
    EXPECT_FALSE(has(ProviderCapability::OpenPicker));
    EXPECT_TRUE(has(ProviderCapability::FreeSpace));
    EXPECT_TRUE(has(ProviderCapability::Folders));
}

TEST_F(StorageContract, DrawsItsIconInTheSizeOfTheIndex) {
    FakeModules::Answer(L"provider7.GetBitmap", L"1");
    CloudProvider* provider = Begin();
    const int sizes[] = {16, 20, 24, 32};
    for (std::uint32_t index = 0; index < std::size(sizes); ++index) {
        const ObLib::UniqueBitmap bitmap(Entries().GetBitmap(provider, 1, index));
        ASSERT_TRUE(bitmap) << index;
        BITMAP shape{};
        ASSERT_NE(GetObjectW(bitmap.Get(), sizeof(shape), &shape), 0);
        EXPECT_EQ(shape.bmWidth, sizes[index]);
        EXPECT_EQ(shape.bmHeight, sizes[index]);
        EXPECT_EQ(shape.bmBitsPixel, 32);
    }
    EXPECT_EQ(Entries().GetBitmap(provider, 1, 4), nullptr);
}

TEST_F(StorageContract, HasNoBitmapOfAProviderWithoutAnIcon) {
    EXPECT_EQ(Entries().GetBitmap(Begin(), 1, 0), nullptr);
}

TEST_F(StorageContract, ListsAccountsTheNewestLast) {
    CloudProvider* provider = Begin();
    ProviderProfile profiles[16];
    ASSERT_EQ(On::GetAccountProfiles::Call(provider, profiles, 16), 2);
    EXPECT_EQ(profiles[0].providerId, 7u);
    EXPECT_STREQ(profiles[0].accountKey, kOne);
    EXPECT_STREQ(profiles[0].accountLabel, L"one");
    EXPECT_STREQ(profiles[1].accountKey, kTwo);
    CloudProvider* other = Entries().GetProviderInstance(manager_, 21, kStorage);
    EXPECT_EQ(On::GetAccountProfiles::Call(other, profiles, 16), 0);
}

TEST_F(StorageContract, KnowsWhichAccountIsLoggedIn) {
    FakeModules::Answer(std::wstring(L"provider7.IsAccountLoggedIn.") + kTwo, L"1");
    FakeModules::Answer(L"IsAuthorized2", L"1");
    CloudProvider* provider = Begin();
    EXPECT_FALSE(On::IsAccountLoggedIn::Call(provider, kOne));
    EXPECT_TRUE(On::IsAccountLoggedIn::Call(provider, kTwo));
    EXPECT_TRUE(Entries().IsAuthorized2(manager_, provider, kTwo, nullptr));
    EXPECT_FALSE(Entries().IsAuthorized2(manager_, nullptr, kTwo, nullptr));
    On::ManageAccount::Call(provider, nullptr, kTwo);
    Entries().Logout2(manager_, provider, kTwo, nullptr);
}

TEST_F(StorageContract, FillsKeyAndLabelAtALogin) {
    FakeModules::Answer(L"Login2", L"1");
    FakeModules::Answer(L"Login2.accountKey", kTwo);
    FakeModules::Answer(L"Login2.accountLabel", L"new");
    CloudProvider* provider = Begin();
    wchar_t key[1000] = L"";
    wchar_t label[51] = L"";
    EXPECT_TRUE(Entries().Login2(manager_, provider, key, label, nullptr));
    EXPECT_NE(key[0], L'\0');
    EXPECT_STREQ(label, L"new");
    EXPECT_FALSE(Entries().Login2(manager_, nullptr, key, label, nullptr));
}

TEST_F(StorageContract, LeavesKeyAndLabelAloneWithoutALogin) {
    CloudProvider* provider = Begin();
    wchar_t key[1000];
    wchar_t label[51] = L"one";
    std::copy(std::begin(kOne), std::end(kOne), key);
    EXPECT_FALSE(Entries().Login2(manager_, provider, key, label, nullptr));
    EXPECT_STREQ(key, kOne);
    EXPECT_STREQ(label, L"one");
}

TEST_F(StorageContract, HasTheLargestNumberForNoLimit) {
    EXPECT_EQ(On::GetMaxFileSize::Call(Begin(), kOne), std::numeric_limits<std::uint64_t>::max());
}

TEST_F(StorageContract, ReportsLimitsAndSpaceOfAnAccount) {
    FakeModules::Answer(L"provider7.HasCapability", L"2");
    FakeModules::Answer(L"provider7.GetMaxFileSize", L"5000000000");
    FakeModules::Answer(L"provider7.GetAccountSpace", L"6000000000,-7");
    FakeModules::Answer(L"provider7.GetAccountRootFolder", L"Root\\Folder");
    CloudProvider* provider = Begin();
    EXPECT_EQ(On::GetMaxFileSize::Call(provider, kOne), 5'000'000'000u);
    std::int64_t free = 0;
    std::int64_t total = 0;
    EXPECT_TRUE(On::GetAccountSpace::Call(provider, kOne, &free, &total));
    EXPECT_EQ(free, 6'000'000'000);
    EXPECT_EQ(total, -7);
    wchar_t root[2048] = L"left over";
    On::GetAccountRootFolder::Call(provider, kOne, root, 2048);
    EXPECT_STREQ(root, L"Root\\Folder");
}

TEST_F(StorageContract, FillsAnEmptyRootFolderForAnAccountWithoutOne) {
    wchar_t root[2048] = L"left over";
    On::GetAccountRootFolder::Call(Begin(), kOne, root, 2048);
    EXPECT_STREQ(root, L"");
}

TEST_F(StorageContract, UploadsSharesAndSchedulesAFile) {
    CloudProvider* provider = Begin();
    UploadList* uploads = ListOf(provider, L"a.zip");
    CloudUploadCallBack callback;
    On::SetCallback::Call(provider, &callback);
    EXPECT_TRUE(Run(provider, uploads));
    EXPECT_EQ(callback.retryWithNewName, 0);
    const auto items = ItemsOf(uploads);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].profile.providerId, 7u);
    EXPECT_STREQ(items[0].profile.accountKey, kOne);
    EXPECT_STREQ(items[0].name, L"a.zip");
    DownloadList* list = On::CreateDownloadList::Call(provider);
    ASSERT_NE(list, nullptr);
    OnDownloads::AddItem::Call(list, &items[0]);
    EXPECT_TRUE(On::ShareItems::Call(provider, list));
    CloudItem shared{};
    ASSERT_TRUE(OnDownloads::GetItem::Call(list, 0, &shared));
    EXPECT_STREQ(shared.link, L"https://7.example/a.zip");
    EXPECT_STREQ(shared.name, L"a.zip");
    EXPECT_FALSE(OnDownloads::GetItem::Call(list, 1, &shared));
    EXPECT_TRUE(Entries().AddFileToDeletionSchedule(&shared, 30));
    On::DestroyDownloadList::Call(provider, list);
    On::ClearCallback::Call(provider);
    On::DestroyUploadList::Call(provider, uploads);
}

TEST_F(StorageContract, AsksForASecondAttemptWhenTheNameIsTaken) {
    FakeModules::Answer(L"provider7.RunUpload", L"0,1");
    FakeModules::Answer(L"provider7.RunUpload.reason", L"1,0");
    CloudProvider* provider = Begin();
    UploadList* uploads = ListOf(provider, L"a.zip");
    CloudUploadCallBack callback;
    On::SetCallback::Call(provider, &callback);
    EXPECT_FALSE(Run(provider, uploads));
    EXPECT_EQ(callback.retryWithNewName, 1);
    callback.retryWithNewName = 0;
    OnUploads::ResetList::Call(uploads, 0);
    EXPECT_TRUE(ItemsOf(uploads).empty());
    OnUploads::AddFile::Call(uploads, L"C:\\t\\a.zip", L"a2.zip", 0, 0, L"");
    EXPECT_TRUE(Run(provider, uploads));
    EXPECT_EQ(callback.retryWithNewName, 0);
    ASSERT_EQ(ItemsOf(uploads).size(), 1u);
    EXPECT_STREQ(ItemsOf(uploads)[0].name, L"a2.zip");
}

TEST_F(StorageContract, AsksForNoSecondAttemptAfterAnyOtherFailure) {
    FakeModules::Answer(L"provider7.RunUpload", L"0");
    CloudProvider* provider = Begin();
    CloudUploadCallBack callback;
    On::SetCallback::Call(provider, &callback);
    EXPECT_FALSE(Run(provider, ListOf(provider, L"a.zip")));
    EXPECT_EQ(callback.retryWithNewName, 0);
}

TEST_F(StorageContract, HasATextForTheErrorThatWasSet) {
    CloudProvider* provider = Begin();
    EXPECT_EQ(ErrorOf(provider, 2048), L"");
    for (const std::uint32_t code : {ProviderErrorTooLarge, ProviderErrorQuota}) {
        On::GetMaxFileSize::Call(provider, kOne);
        On::SetLastProviderError::Call(provider, code);
        const std::wstring text = ErrorOf(provider, 2048);
        EXPECT_GT(text.size(), 5u);
        EXPECT_EQ(ErrorOf(provider, 5), text.substr(0, 4));
        EXPECT_EQ(ErrorOf(provider, 1), L"");
    }
}

TEST_F(StorageContract, FillsTheListOfAPick) {
    FakeModules::Answer(L"GetSharedListFromOpenPicker", L"a.pdf|https://x/1;b.pdf|https://x/2");
    CloudProvider* provider = Begin();
    DownloadList* list = On::CreateDownloadList::Call(provider);
    EXPECT_TRUE(Entries().GetSharedListFromOpenPicker(manager_, provider, list, nullptr));
    CloudItem item{};
    ASSERT_TRUE(OnDownloads::GetItem::Call(list, 1, &item));
    EXPECT_EQ(item.profile.providerId, 7u);
    EXPECT_STREQ(item.link, L"https://x/2");
    EXPECT_EQ(std::wstring(item.name).rfind(L"b.pdf", 0), 0u);
    EXPECT_FALSE(OnDownloads::GetItem::Call(list, 2, &item));
    Entries().DeleteDownloadList(provider, list);
}

TEST_F(StorageContract, HasNoTextForACancelledPick) {
    CloudProvider* provider = Begin();
    DownloadList* list = On::CreateDownloadList::Call(provider);
    EXPECT_FALSE(Entries().GetSharedListFromOpenPicker(manager_, provider, list, nullptr));
    wchar_t text[2048] = L"left over";
    std::uint64_t capacity = 2048;
    EXPECT_EQ(Entries().GetLastErrorCodeOfProvider(manager_, list, L"", text, &capacity), 0);
    EXPECT_STREQ(text, L"");
    EXPECT_FALSE(Entries().GetSharedListFromOpenPicker(manager_, provider, nullptr, nullptr));
    EXPECT_FALSE(Entries().GetSharedListFromOpenPicker(manager_, nullptr, list, nullptr));
}

TEST_F(StorageContract, HasATextForAFailedPick) {
    FakeModules::Answer(L"GetLastErrorCodeOfProvider", L"1");
    FakeModules::Answer(L"GetLastErrorCodeOfProvider.text", L"The server doesn't answer.");
    CloudProvider* provider = Begin();
    DownloadList* list = On::CreateDownloadList::Call(provider);
    EXPECT_FALSE(Entries().GetSharedListFromOpenPicker(manager_, provider, list, nullptr));
    wchar_t text[2048] = L"";
    std::uint64_t capacity = 2048;
    EXPECT_NE(Entries().GetLastErrorCodeOfProvider(manager_, list, L"", text, &capacity), 0);
    EXPECT_STREQ(text, L"The server doesn't answer.");
    capacity = 4;
    Entries().GetLastErrorCodeOfProvider(manager_, list, L"", text, &capacity);
    EXPECT_STREQ(text, L"The");
}

} // namespace
