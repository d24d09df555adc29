#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "OBCore/cloud/CloudUploadCallBack.h"
#include "tests/support/Allocations.h"
#include "tests/unit/services/providers/storage/InstanceFixture.h"

namespace {

using namespace obcontract;
using providers::UploadEnd;
using providers::UploadFile;
using providers::UploadResult;

constexpr wchar_t kFailed[] = L"“a.zip” can't be uploaded. Nothing was attached. Please try again.";

class UploadedFiles : public obtest::InstanceFixture {
protected:
    void SetUp() override {
        InstanceFixture::SetUp();
        key_ = Add(kSeven, L"my files");
    }

    std::vector<CloudItem> ItemsOf(UploadList* list) {
        std::vector<CloudItem> items;
        CloudItem item;
        while (OnUploads::GetItem::Call(list, static_cast<std::uint32_t>(items.size()), &item)) {
            items.push_back(item);
        }
        return items;
    }

    void EndWith(UploadEnd end, const std::wstring& sentence = {}) {
        upload_ = [=](auto&, auto&, const UploadFile&, auto&, HWND) {
            return UploadResult{end, {}, sentence};
        };
    }

    // What an upload that ends in this way makes of the callback.
    obcore::CloudUploadCallBack CallbackAfter(UploadEnd end) {
        obcore::CloudUploadCallBack callback;
        EndWith(end, L"The server is full.");
        On::SetCallback::Call(Seven(), &callback);
        EXPECT_FALSE(Run(ListOf(key_)));
        On::ClearCallback::Call(Seven());
        return callback;
    }

    std::wstring key_;
};

TEST_F(UploadedFiles, GetTheFilesTextsAndWindowAsTheyWereGiven) {
    const HWND window = GetDesktopWindow();
    upload_ = [&](providers::StorageProvider& provider, const std::wstring& key,
                  const UploadFile& file, const providers::UploadTexts& texts, HWND owner) {
        EXPECT_EQ(&provider, sevenScript_);
        EXPECT_EQ(key, key_);
        EXPECT_EQ(file.localPath, L"C:\\t\\a.zip");
        EXPECT_EQ(file.name, L"a.zip");
        EXPECT_EQ(file.folder, L"folder");
        EXPECT_EQ(texts.title, L"title");
        EXPECT_EQ(texts.body, L"body");
        EXPECT_EQ(owner, window);
        return Store(file);
    };
    EXPECT_TRUE(Run(ListOf(key_), window));
    EXPECT_EQ(run_->owner, window);
    EXPECT_EQ(Error(key_), L"");
}

TEST_F(UploadedFiles, HaveARecordWithAccountNameAndAnAddressThatIsNoLink) {
    UploadList* list = ListOf(key_);
    EXPECT_TRUE(ItemsOf(list).empty());
    ASSERT_TRUE(Run(list));
    const auto items = ItemsOf(list);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].profile.providerId, 7u);
    EXPECT_EQ(items[0].profile.accountKey, key_);
    EXPECT_STREQ(items[0].profile.accountLabel, L"my files");
    EXPECT_STREQ(items[0].name, L"a.zip");
    const std::wstring link = items[0].link;
    EXPECT_EQ(link.rfind(L"unshared:", 0), 0u) << link.c_str();
    EXPECT_EQ(link.find(L'/'), std::wstring::npos);
    const auto upload = run_->uploads.Find(key_, link);
    ASSERT_TRUE(upload);
    EXPECT_EQ(upload->file.path, L"/folder/a.zip");
    EXPECT_EQ(upload->file.version, L"version");
    EXPECT_FALSE(run_->uploads.Find(L"another account", link));
}

TEST_F(UploadedFiles, HaveAddressesThatDifferInTheWholeRun) {
    UploadList* one = ListOf(key_);
    UploadList* two = ListOf(key_);
    Run(one);
    Run(two);
    EXPECT_STRNE(ItemsOf(one).at(0).link, ItemsOf(two).at(0).link);
}

TEST_F(UploadedFiles, AreInTheListInTheirOrder) {
    UploadList* list = ListOf(key_, L"one.zip");
    OnUploads::AddFile::Call(list, L"C:\\t\\2", L"two.zip", 0, 0, L"");
    ASSERT_TRUE(Run(list));
    const auto items = ItemsOf(list);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_STREQ(items[0].name, L"one.zip");
    EXPECT_STREQ(items[1].name, L"two.zip");
    EXPECT_FALSE(OnUploads::GetItem::Call(list, 0, nullptr));
}

TEST_F(UploadedFiles, AreThoseBeforeTheOneThatFailedAndArentUploadedAgain) {
    UploadList* list = ListOf(key_, L"one.zip");
    OnUploads::AddFile::Call(list, L"C:\\t\\2", L"two.zip", 0, 0, L"");
    std::vector<std::wstring> tried;
    bool fails = true;
    upload_ = [&](auto&, auto&, const UploadFile& file, auto&, HWND) {
        tried.push_back(file.name);
        return fails && file.name == L"two.zip" ? UploadResult{} : Store(file);
    };
    EXPECT_FALSE(Run(list));
    EXPECT_EQ(ItemsOf(list).size(), 1u);
    fails = false;
    EXPECT_TRUE(Run(list));
    EXPECT_EQ(tried, (std::vector<std::wstring>{L"one.zip", L"two.zip", L"two.zip"}));
    EXPECT_EQ(ItemsOf(list).size(), 2u);
}

TEST_F(UploadedFiles, AreGoneFromTheListAfterAReset) {
    UploadList* list = ListOf(key_);
    ASSERT_TRUE(Run(list));
    OnUploads::ResetList::Call(list, 0);
    EXPECT_TRUE(ItemsOf(list).empty());
    EXPECT_FALSE(Run(list));
    EXPECT_EQ(Error(key_), kFailed);
    OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", L"b.zip", 0, 0, L"");
    EXPECT_TRUE(Run(list));
    EXPECT_STREQ(ItemsOf(list).at(0).name, L"b.zip");
}

TEST_F(UploadedFiles, KeepTheNameThatTheProviderGaveThem) {
    upload_ = [](auto&, auto&, const UploadFile& file, auto&, HWND) {
        UploadResult result = Store(file);
        result.stored.name = L"a (2).zip";
        return result;
    };
    UploadList* list = ListOf(key_);
    ASSERT_TRUE(Run(list));
    EXPECT_STREQ(ItemsOf(list).at(0).name, L"a (2).zip");
}

TEST_F(UploadedFiles, HaveTheirOwnNameWhenTheProvidersDoesntFit) {
    upload_ = [](auto&, auto&, const UploadFile& file, auto&, HWND) {
        UploadResult result = Store(file);
        result.stored.name = std::wstring(1569, L'x');
        return result;
    };
    UploadList* list = ListOf(key_);
    ASSERT_TRUE(Run(list));
    EXPECT_STREQ(ItemsOf(list).at(0).name, L"a.zip");
}

TEST_F(UploadedFiles, GoToTheAccountsOwnProvider) {
    const std::wstring key = Add(kEight, L"of eight");
    upload_ = [&](providers::StorageProvider& provider, auto&, const UploadFile& file, auto&,
                  HWND) {
        EXPECT_EQ(&provider, eightScript_);
        return Store(file);
    };
    UploadList* list = ListOf(key); // of seven's instance
    ASSERT_TRUE(Run(list));
    EXPECT_EQ(ItemsOf(list).at(0).profile.providerId, 8u);
    EXPECT_STREQ(ItemsOf(list).at(0).profile.accountLabel, L"of eight");
}

TEST_F(UploadedFiles, NeedAListOfThisInstance) {
    UploadList* foreign = On::CreateUploadList::Call(Eight(), key_.c_str());
    OnUploads::AddFile::Call(foreign, L"C:\\t\\a.zip", L"a.zip", 0, 0, L"");
    EXPECT_FALSE(Run(foreign));
    EXPECT_FALSE(Run(nullptr));
    UploadList* list = ListOf(key_);
    On::DestroyUploadList::Call(Eight(), list); // not eight's to take back
    EXPECT_TRUE(Run(list));
    On::DestroyUploadList::Call(Seven(), list);
    EXPECT_FALSE(Run(list)); // by its address alone
    On::DestroyUploadList::Call(Seven(), nullptr);
}

TEST_F(UploadedFiles, NeedTextsThatArentNull) {
    EXPECT_EQ(On::CreateUploadList::Call(Seven(), nullptr), nullptr);
    UploadList* list = On::CreateUploadList::Call(Seven(), key_.c_str());
    OnUploads::AddFile::Call(list, nullptr, L"a.zip", 0, 0, L"");
    OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", nullptr, 0, 0, L"");
    OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", L"a.zip", 0, 0, nullptr);
    OnUploads::AddFile::Call(list, L"", L"a.zip", 0, 0, L"");
    OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", L"", 0, 0, L"");
    OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", std::wstring(1569, L'x').c_str(), 0, 0, L"");
    EXPECT_FALSE(Run(list)) << "an empty list is never a success";
    OnUploads::AddFile::Call(list, L"C:\\t\\a.zip", L"a.zip", 0, 0, L"");
    EXPECT_FALSE(
        On::RunUpload::Call(Seven(), list, nullptr, nullptr, L"body", 1, 0, 1, 1, 1, nullptr));
    EXPECT_FALSE(
        On::RunUpload::Call(Seven(), list, nullptr, L"title", nullptr, 1, 0, 1, 1, 1, nullptr));
    EXPECT_EQ(Error(key_), kFailed);
    EXPECT_TRUE(Run(list));
}

TEST_F(UploadedFiles, AskForASecondAttemptWhenTheNameIsTaken) {
    const auto callback = CallbackAfter(UploadEnd::NameTaken);
    EXPECT_EQ(callback.retryWithNewName, 1);
    EXPECT_FALSE(callback.cancelled);
    EXPECT_EQ(Error(key_),
              L"There is a file “a.zip” in this account already, and it was left as it "
              L"is. Nothing was attached. Please try again.");
}

TEST_F(UploadedFiles, ReportACancelWithItsOwnSentence) {
    const auto callback = CallbackAfter(UploadEnd::Cancelled);
    EXPECT_TRUE(callback.cancelled);
    EXPECT_EQ(callback.retryWithNewName, 0);
    EXPECT_EQ(Error(key_), L"Upload cancelled. Nothing was attached.");
}

TEST_F(UploadedFiles, KeepTheSentenceOfAFailureByAccount) {
    const auto callback = CallbackAfter(UploadEnd::Failed);
    EXPECT_FALSE(callback.cancelled);
    EXPECT_EQ(callback.retryWithNewName, 0);
    EXPECT_EQ(Error(key_), L"The server is full.");
    EXPECT_EQ(Error(Add(kSeven)), L"");
}

TEST_F(UploadedFiles, HaveAGeneralSentenceForAFailureWithoutOne) {
    EndWith(UploadEnd::Failed);
    EXPECT_FALSE(Run(ListOf(key_)));
    EXPECT_EQ(Error(key_), kFailed);
}

TEST_F(UploadedFiles, FailWhenTheUploadThrows) {
    upload_ = [](auto&, auto&, const UploadFile&, auto&, HWND) -> UploadResult {
        throw std::runtime_error("scripted");
    };
    EXPECT_FALSE(Run(ListOf(key_)));
    EXPECT_EQ(Error(key_), kFailed);
}

TEST_F(UploadedFiles, NeedAnAccountThatIsStillThere) {
    UploadList* list = ListOf(key_);
    book_.Remove(kSeven, key_);
    EXPECT_FALSE(Run(list));
    EXPECT_EQ(Error(key_), L"“a.zip” wasn't uploaded, because you are no longer logged in to this "
                           L"account. Nothing was attached. Please try again and log in.");
}

TEST_F(UploadedFiles, LeaveNoErrorAfterASuccess) {
    CallbackAfter(UploadEnd::NameTaken);
    upload_ = [](auto&, auto&, const UploadFile& file, auto&, HWND) { return Store(file); };
    EXPECT_TRUE(Run(ListOf(key_)));
    EXPECT_EQ(Error(key_), L"");
}

TEST_F(UploadedFiles, ReportNothingAfterTheCallbackIsCleared) {
    obcore::CloudUploadCallBack callback;
    On::SetCallback::Call(Seven(), &callback);
    On::ClearCallback::Call(Seven());
    EndWith(UploadEnd::Cancelled);
    EXPECT_FALSE(Run(ListOf(key_)));
    EXPECT_FALSE(callback.cancelled);
}

TEST_F(UploadedFiles, KeepTheInstanceWhileItRuns) {
    UploadList* list = ListOf(key_);
    CloudProvider* const instance = Seven();
    upload_ = [&](auto&, auto&, const UploadFile& file, auto&, HWND) {
        sevenInstance_.reset(); // Deinit, from a message that the window dispatched
        return Store(file);
    };
    EXPECT_TRUE(On::RunUpload::Call(instance, list, nullptr, L"", L"", 1, 0, 1, 1, 1, nullptr));
}

// From the end of the upload on, nothing is allocated for a file that is stored.
TEST_F(UploadedFiles, AreStoredAlsoWhenTheMemoryRunsOutAtTheEnd) {
    UploadList* list = ListOf(key_);
    std::optional<obtest::FailingAllocations> shortage;
    upload_ = [&](auto&, auto&, const UploadFile& file, auto&, HWND) {
        UploadResult result = Store(file);
        shortage.emplace(obtest::AllocationPlan{});
        return result;
    };
    const bool isDone = Run(list) != 0;
    shortage.reset();
    EXPECT_TRUE(isDone);
    CloudItem item{};
    ASSERT_TRUE(OnUploads::GetItem::Call(list, 0, &item));
    EXPECT_STREQ(item.name, L"a.zip");
    EXPECT_TRUE(run_->uploads.Find(key_, item.link));
    EXPECT_EQ(Error(key_), L"");
}

TEST_F(UploadedFiles, ArentKeptInMindUnlessTheyAreStored) {
    EndWith(UploadEnd::Cancelled);
    EXPECT_FALSE(Run(ListOf(key_)));
    EXPECT_FALSE(run_->uploads.Find(key_, L"unshared:1"));
}

} // namespace
