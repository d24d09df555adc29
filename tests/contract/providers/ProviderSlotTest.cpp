// The slots of a provider and of its lists by number, on the fake's tables: each typed call has
// to reach the slot of its name with its arguments in their places.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "OBCore/cloud/CloudUploadCallBack.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "tests/support/FakeModules.h"

namespace {

using namespace obcontract;
using namespace obcore;
using OnProvider = slots::OnCloudProvider;
using OnUpload = slots::OnUploadList;
using OnDownload = slots::OnDownloadList;
using Lines = std::vector<std::wstring>;

HWND Window(std::uintptr_t value) { return reinterpret_cast<HWND>(value); }

class ProviderSlots : public testing::Test {
protected:
    void SetUp() override {
        obtest::FakeModules::Reset();
        obtest::FakeModules::Answer(L"Providers", L"7,21");
        ASSERT_TRUE(LoadProviderManager());
        manager_ = ProviderManager().CreateObExtensionsManager();
        ProviderManager().Init(manager_, -2147483647, kProviderManagerKey);
        provider_ = ProviderManager().GetProviderInstance(manager_, 7, ProviderKind::Storage);
        ASSERT_NE(provider_, nullptr);
        obtest::FakeModules::ForgetCalls();
    }
    void TearDown() override { ProviderManager().DeleteObExtensionsManager(manager_); }

    static void Answer(const wchar_t* key, const wchar_t* answer) {
        obtest::FakeModules::Answer(key, answer);
    }

    ProviderManagerHandle manager_ = nullptr;
    CloudProvider* provider_ = nullptr;
};

TEST_F(ProviderSlots, AreAtTheirNumbers) {
    EXPECT_EQ(OnProvider::GetProviderId::kNumber, 11u);
    EXPECT_EQ(OnProvider::GetDisplayName::kNumber, 14u);
    EXPECT_EQ(OnProvider::SetLastProviderError::kNumber, 21u);
    EXPECT_EQ(OnProvider::SetCallback::kNumber, 29u);
    EXPECT_EQ(OnProvider::ClearCallback::kNumber, 30u);
    EXPECT_EQ(OnProvider::HasCapability::kNumber, 60u);
    EXPECT_EQ(OnProvider::CreateDownloadList::kNumber, 104u);
    EXPECT_EQ(OnProvider::DestroyDownloadList::kNumber, 105u);
    EXPECT_EQ(OnProvider::CreateUploadList::kNumber, 106u);
    EXPECT_EQ(OnProvider::DestroyUploadList::kNumber, 107u);
    EXPECT_EQ(OnProvider::GetAccountSpace::kNumber, 114u);
    EXPECT_EQ(OnProvider::GetMaxFileSize::kNumber, 115u);
    EXPECT_EQ(OnProvider::GetAccountRootFolder::kNumber, 116u);
    EXPECT_EQ(OnProvider::RunUpload::kNumber, 122u);
    EXPECT_EQ(OnProvider::ShareItems::kNumber, 123u);
    EXPECT_EQ(OnProvider::IsAccountLoggedIn::kNumber, 133u);
    EXPECT_EQ(OnProvider::GetAccountProfiles::kNumber, 136u);
    EXPECT_EQ(OnProvider::ManageAccount::kNumber, 137u);
    EXPECT_EQ(OnDownload::GetItem::kNumber, 0u);
    EXPECT_EQ(OnDownload::AddItem::kNumber, 1u);
    EXPECT_EQ(OnUpload::AddFile::kNumber, 1u);
    EXPECT_EQ(OnUpload::GetItem::kNumber, 2u);
    EXPECT_EQ(OnUpload::ResetList::kNumber, 3u);
}

TEST_F(ProviderSlots, DescribeAProvider) {
    Answer(L"provider7.GetDisplayName", L"Boxy");
    Answer(L"provider7.HasCapability", L"1026");
    EXPECT_EQ(OnProvider::GetProviderId::Call(provider_), 7u);
    wchar_t name[128];
    std::uint32_t capacity = 128;
    OnProvider::GetDisplayName::Call(provider_, ProviderKind::Storage, name, &capacity);
    EXPECT_STREQ(name, L"Boxy");
    EXPECT_FALSE(OnProvider::HasCapability::Call(provider_, ProviderKind::Storage,
                                                 ProviderCapability::OpenPicker));
    EXPECT_TRUE(OnProvider::HasCapability::Call(provider_, ProviderKind::Storage,
                                                ProviderCapability::FreeSpace));
    EXPECT_TRUE(OnProvider::HasCapability::Call(provider_, ProviderKind::Storage,
                                                ProviderCapability::Folders));
    OnProvider::ManageAccount::Call(provider_, Window(4242), L"key");
    EXPECT_EQ(
        obtest::FakeModules::Calls(),
        (Lines{L"GetProviderId(provider7)", L"GetDisplayName(provider7, 1, 128)",
               L"HasCapability(provider7, 1, 1)", L"HasCapability(provider7, 1, 2)",
               L"HasCapability(provider7, 1, 1024)", L"ManageAccount(provider7, 4242, \"key\")"}));
}

TEST_F(ProviderSlots, DescribeAnAccount) {
    Answer(L"provider7.GetAccountSpace", L"-2,5000000000");
    Answer(L"provider7.GetMaxFileSize", L"4294967296");
    Answer(L"provider7.GetAccountRootFolder", L"root");
    Answer(L"provider7.IsAccountLoggedIn", L"1");
    std::int64_t freeBytes = 0;
    std::int64_t totalBytes = 0;
    EXPECT_TRUE(OnProvider::GetAccountSpace::Call(provider_, L"key", &freeBytes, &totalBytes));
    EXPECT_EQ(freeBytes, SizeUnknown);
    EXPECT_EQ(totalBytes, 5000000000);
    EXPECT_EQ(OnProvider::GetMaxFileSize::Call(provider_, L"key"), 4294967296u);
    wchar_t root[2048];
    OnProvider::GetAccountRootFolder::Call(provider_, L"key", root, 2048);
    EXPECT_STREQ(root, L"root");
    EXPECT_TRUE(OnProvider::IsAccountLoggedIn::Call(provider_, L"key"));
    EXPECT_EQ(obtest::FakeModules::Calls(),
              (Lines{L"GetAccountSpace(provider7, \"key\")", L"GetMaxFileSize(provider7, \"key\")",
                     L"GetAccountRootFolder(provider7, \"key\", 2048)",
                     L"IsAccountLoggedIn(provider7, \"key\")"}));
}

TEST_F(ProviderSlots, ListTheAccounts) {
    ProviderProfile profiles[16];
    EXPECT_EQ(OnProvider::GetAccountProfiles::Call(provider_, profiles, 16), 0);
    Answer(L"provider7.GetAccountProfiles", L"-1");
    EXPECT_EQ(OnProvider::GetAccountProfiles::Call(provider_, profiles, 16), -1);
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann@x;Bob|bob@x");
    ASSERT_EQ(OnProvider::GetAccountProfiles::Call(provider_, profiles, 16), 2);
    EXPECT_EQ(profiles[1].providerId, 7u);
    EXPECT_STREQ(profiles[0].accountLabel, L"Ann");
    EXPECT_STREQ(profiles[1].accountKey, L"bob@x");
    EXPECT_EQ(OnProvider::GetAccountProfiles::Call(provider_, profiles, 1), 1);
}

TEST_F(ProviderSlots, CarryAnUploadListThroughItsLife) {
    UploadList* list = OnProvider::CreateUploadList::Call(provider_, L"key");
    ASSERT_NE(list, nullptr);
    OnUpload::AddFile::Call(list, L"C:\\t\\a.zip", L"a.zip", 0, 0, L"folder");
    CloudItem item;
    ASSERT_TRUE(OnUpload::GetItem::Call(list, 0, &item));
    EXPECT_STREQ(item.name, L"a.zip");
    EXPECT_STREQ(item.link, L"");
    EXPECT_EQ(item.profile.providerId, 7u);
    EXPECT_STREQ(item.profile.accountKey, L"key");
    EXPECT_FALSE(OnUpload::GetItem::Call(list, 1, &item));
    OnUpload::ResetList::Call(list, 0);
    EXPECT_FALSE(OnUpload::GetItem::Call(list, 0, &item));
    OnProvider::DestroyUploadList::Call(provider_, list);
    EXPECT_EQ(obtest::FakeModules::Calls(),
              (Lines{L"CreateUploadList(provider7, \"key\")",
                     L"AddFile(list, \"C:\\t\\a.zip\", \"a.zip\", 0, 0, \"folder\")",
                     L"GetItem(list, 0)", L"GetItem(list, 1)", L"ResetList(list, 0)",
                     L"GetItem(list, 0)", L"DestroyUploadList(provider7, list)"}));
}

TEST_F(ProviderSlots, FillTheLinksOfASharedList) {
    DownloadList* list = OnProvider::CreateDownloadList::Call(provider_);
    ASSERT_NE(list, nullptr);
    CloudItem item{};
    wcscpy(item.name, L"a.zip");
    OnDownload::AddItem::Call(list, &item);
    ASSERT_TRUE(OnProvider::ShareItems::Call(provider_, list));
    ASSERT_TRUE(OnDownload::GetItem::Call(list, 0, &item));
    EXPECT_STREQ(item.link, L"https://7.example/a.zip");
    EXPECT_FALSE(OnDownload::GetItem::Call(list, 1, &item));
    OnProvider::DestroyDownloadList::Call(provider_, list);
    EXPECT_EQ(obtest::FakeModules::Calls(),
              (Lines{L"CreateDownloadList(provider7)", L"AddItem(list, item(\"a.zip\", \"\"))",
                     L"ShareItems(provider7, list)", L"GetItem(list, 0)", L"GetItem(list, 1)",
                     L"DestroyDownloadList(provider7, list)"}));
}

TEST_F(ProviderSlots, MayHaveNoLists) {
    Answer(L"provider7.CreateUploadList", L"0");
    Answer(L"provider7.CreateDownloadList", L"0");
    EXPECT_EQ(OnProvider::CreateUploadList::Call(provider_, L"key"), nullptr);
    EXPECT_EQ(OnProvider::CreateDownloadList::Call(provider_), nullptr);
}

TEST_F(ProviderSlots, PassTheArgumentsOfAnUpload) {
    UploadList* list = OnProvider::CreateUploadList::Call(provider_, L"key");
    obtest::FakeModules::ForgetCalls();
    EXPECT_TRUE(OnProvider::RunUpload::Call(provider_, list, Window(77), L"title", L"body", true,
                                            false, true, true, 1, nullptr));
    EXPECT_EQ(obtest::FakeModules::Calls(),
              (Lines{L"RunUpload(provider7, list, 77, \"title\", \"body\", 1, 0, 1, 1, 1, null)"}));
    OnProvider::DestroyUploadList::Call(provider_, list);
}

TEST_F(ProviderSlots, GiveTheErrorThatWasSet) {
    OnProvider::SetLastProviderError::Call(provider_, ProviderErrorQuota);
    wchar_t text[2048];
    std::uint64_t capacity = 2048;
    ProviderManager().GetLastErrorOfProvider(provider_, L"key", L"a.zip", text, &capacity);
    EXPECT_STREQ(text, L"error 9");
    OnProvider::SetLastProviderError::Call(provider_, 0);
}

TEST_F(ProviderSlots, AnswerABoolInTheLowByteOnly) {
    const auto answer = +[](CloudProvider*) -> std::uint64_t { return 0xFFFFFFFFFFFFFF00; };
    void* table[kCloudProviderSlotCount] = {};
    table[OnProvider::HasCapability::kNumber] = reinterpret_cast<void*>(answer);
    table[OnProvider::RunUpload::kNumber] = reinterpret_cast<void*>(answer);
    CloudProvider provider{table};
    EXPECT_FALSE(OnProvider::HasCapability::Call(&provider, ProviderKind::Storage,
                                                 ProviderCapability::OpenPicker));
    EXPECT_FALSE(OnProvider::RunUpload::Call(&provider, nullptr, nullptr, L"", L"", true, false,
                                             true, true, 1, nullptr));
}

TEST_F(ProviderSlots, WriteDownACallThatNobodyShouldMake) {
    using Function = void (*)(CloudProvider*);
    reinterpret_cast<Function>(provider_->table[0])(provider_);
    reinterpret_cast<Function>(provider_->table[135])(provider_);
    EXPECT_EQ(obtest::FakeModules::Calls(), (Lines{L"UnexpectedSlot(0)", L"UnexpectedSlot(135)"}));
}

// An upload whose attempts report something to the callback.
class ProviderCallback : public ProviderSlots {
protected:
    bool Run() {
        return OnProvider::RunUpload::Call(provider_, nullptr, nullptr, L"", L"", true, false, true,
                                           true, 1, nullptr);
    }

    CloudUploadCallBack callback_;
};

TEST_F(ProviderCallback, HearsThatTheNameIsTaken) {
    Answer(L"provider7.RunUpload", L"0,1");
    Answer(L"provider7.RunUpload.reason", L"1");
    OnProvider::SetCallback::Call(provider_, &callback_);
    EXPECT_FALSE(Run());
    EXPECT_EQ(callback_.retryWithNewName, 1);
    callback_.retryWithNewName = 0;
    EXPECT_TRUE(Run());
    EXPECT_EQ(callback_.retryWithNewName, 0);
    OnProvider::ClearCallback::Call(provider_);
    EXPECT_EQ(obtest::FakeModules::CallsOf({L"SetCallback", L"ClearCallback"}),
              (Lines{L"SetCallback(provider7, callback)", L"ClearCallback(provider7)"}));
}

TEST_F(ProviderCallback, IgnoresAnotherReason) {
    Answer(L"provider7.RunUpload.reason", L"2");
    OnProvider::SetCallback::Call(provider_, &callback_);
    EXPECT_TRUE(Run());
    EXPECT_EQ(callback_.retryWithNewName, 0);
    OnProvider::ClearCallback::Call(provider_);
}

TEST_F(ProviderCallback, HearsNothingOnceItIsCleared) {
    Answer(L"provider7.RunUpload.reason", L"1");
    OnProvider::SetCallback::Call(provider_, &callback_);
    OnProvider::ClearCallback::Call(provider_);
    EXPECT_TRUE(Run());
    EXPECT_EQ(callback_.retryWithNewName, 0);
}

} // namespace
