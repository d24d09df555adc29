// Picks from the cloud, and logins, as the exports run them.
#include <string>
#include <vector>

#include "services/providers/storage/Logins.h"
#include "services/providers/storage/PickStep.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/services/providers/storage/InstanceFixture.h"

namespace {

using namespace obcontract;
using providers::PickResult;
using providers::StorageAccount;

class PickedFiles : public obtest::InstanceFixture {
protected:
    bool Pick(PickResult result) {
        sevenScript_->pick = [=](auto&) { return result; };
        return providers::PickFiles(*sevenScript_, L"preferred", list_, nullptr);
    }

    providers::OwnDownloadList list_;
    StorageAccount account_{L"{01234567-89AB-CDEF-0123-456789ABCDEF}", L"my files"};
};

TEST_F(PickedFiles, HaveTheirAccountAndTheirLinkInTheirName) {
    ASSERT_TRUE(Pick({{{account_, L"a.pdf", L"https://example.org/1|2"},
                       {account_, L"b|c.pdf", L"https://example.org/3"}},
                      {}}));
    ASSERT_EQ(list_.items.size(), 2u);
    EXPECT_EQ(list_.items[0].profile.providerId, 7u);
    EXPECT_EQ(list_.items[0].profile.accountKey, account_.key);
    EXPECT_STREQ(list_.items[0].profile.accountLabel, L"my files");
    EXPECT_STREQ(list_.items[0].name, L"a.pdf https://example.org/1%7C2");
    EXPECT_STREQ(list_.items[0].link, L"https://example.org/1%7C2");
    EXPECT_STREQ(list_.items[1].name, L"b c.pdf https://example.org/3");
    EXPECT_TRUE(list_.failure.empty());
    EXPECT_EQ(sevenScript_->calls, std::vector<std::wstring>{L"Pick(preferred)"});
}

TEST_F(PickedFiles, AreNoneWithoutASentenceAfterACancel) {
    EXPECT_FALSE(Pick({}));
    EXPECT_TRUE(list_.items.empty());
    EXPECT_TRUE(list_.failure.empty());
}

TEST_F(PickedFiles, AreNoneWithTheProvidersSentenceAfterAFailure) {
    EXPECT_FALSE(Pick({{}, L"The server doesn't answer."}));
    EXPECT_EQ(list_.failure, L"The server doesn't answer.");
    EXPECT_FALSE(Pick({}));
    EXPECT_TRUE(list_.failure.empty()) << "of the pick before";
}

TEST_F(PickedFiles, AreNoneWithASentenceWhenTheProviderThrows) {
    sevenScript_->throws = true;
    EXPECT_FALSE(providers::PickFiles(*sevenScript_, L"", list_, nullptr));
    EXPECT_EQ(list_.failure, L"Your files in the cloud can't be shown. Please try again.");
}

TEST_F(PickedFiles, AreNoneWithASentenceWhenTheirRecordsCantBeMade) {
    sevenScript_->pick = [this](auto&) {
        sevenScript_->throws = true; // when its name is asked for
        return PickResult{{{account_, L"a.pdf", L"https://example.org/1"}}, {}};
    };
    EXPECT_FALSE(providers::PickFiles(*sevenScript_, L"", list_, nullptr));
    EXPECT_TRUE(list_.items.empty());
    EXPECT_EQ(list_.failure, L"Your files in the cloud can't be shown. Please try again.");
}

TEST_F(PickedFiles, AreRefusedWhenTheyDontFitRatherThanCut) {
    EXPECT_FALSE(
        Pick({{{account_, L"a.pdf", L"b"}, {account_, std::wstring(1600, L'x'), L"b"}}, {}}));
    EXPECT_TRUE(list_.items.empty());
    EXPECT_EQ(list_.failure,
              L"The links to so many files don't fit into one mail. Please choose fewer files.");
}

class Logins : public obtest::InstanceFixture {
protected:
    void SetUp() override {
        InstanceFixture::SetUp();
        sevenScript_->logIn = [this](const std::wstring& key) {
            return key.empty() ? book_.Add(kSeven, L"new") : book_.Account(kSeven, key);
        };
    }

    bool LogIn(const std::wstring& key, providers::ProviderInstance* instance = nullptr) {
        key_[key.copy(key_, 999)] = L'\0';
        label_[0] = L'\0';
        return providers::LogIn(instance ? *instance : *sevenInstance_, key_, label_, nullptr);
    }

    wchar_t key_[1000] = L"";
    wchar_t label_[51] = L"";
};

TEST_F(Logins, ToANewAccountGiveItsKeyAndLabel) {
    EXPECT_TRUE(LogIn(L""));
    EXPECT_TRUE(book_.Contains(kSeven, key_));
    EXPECT_STREQ(label_, L"new");
    EXPECT_EQ(sevenScript_->calls, std::vector<std::wstring>{L"LogIn()"});
}

TEST_F(Logins, ToAnAccountThatIsThereKeepItsKeyAndMakeItTheNewest) {
    const std::wstring one = Add(kSeven, L"one");
    Add(kSeven, L"two");
    EXPECT_TRUE(LogIn(one));
    EXPECT_EQ(key_, one);
    EXPECT_STREQ(label_, L"one");
    EXPECT_EQ(book_.Accounts(kSeven).back().key, one);
}

TEST_F(Logins, ToAnAccountThatIsGoneMakeANewOne) {
    EXPECT_TRUE(LogIn(L"{01234567-89AB-CDEF-0123-456789ABCDEF}"));
    EXPECT_EQ(sevenScript_->calls, std::vector<std::wstring>{L"LogIn()"});
    EXPECT_TRUE(book_.Contains(kSeven, key_));
}

TEST_F(Logins, GoToTheAccountsOwnProvider) {
    const std::wstring key = Add(kSeven, L"one");
    EXPECT_TRUE(LogIn(key, eightInstance_.get()));
    EXPECT_EQ(key_, key);
    EXPECT_TRUE(eightScript_->calls.empty());
}

TEST_F(Logins, LeaveTheBuffersAloneAfterACancel) {
    sevenScript_->logIn = [](auto&) { return std::nullopt; };
    const std::wstring one = Add(kSeven, L"one");
    EXPECT_FALSE(LogIn(one));
    EXPECT_EQ(key_, one);
    sevenScript_->throws = true;
    EXPECT_THROW(LogIn(one), std::runtime_error); // stopped by the export
}

TEST_F(Logins, FillTheLabelUpToItsRoom) {
    sevenScript_->logIn = [](auto&) { return StorageAccount{L"key", std::wstring(60, L'l')}; };
    EXPECT_TRUE(LogIn(L""));
    EXPECT_EQ(label_, std::wstring(50, L'l'));
}

TEST_F(Logins, NeedBuffersWhoseKeyEnds) {
    EXPECT_FALSE(providers::LogIn(*sevenInstance_, nullptr, label_, nullptr));
    EXPECT_FALSE(providers::LogIn(*sevenInstance_, key_, nullptr, nullptr));
    std::fill(std::begin(key_), std::end(key_), L'k');
    EXPECT_FALSE(providers::LogIn(*sevenInstance_, key_, label_, nullptr));
    EXPECT_TRUE(sevenScript_->calls.empty());
}

TEST_F(Logins, RefuseASeventeenthAccountWithASentence) {
    for (int count = 0; count < 16; ++count) Add(kSeven, std::to_wstring(count));
    obtest::MessageBoxWatcher watcher;
    EXPECT_FALSE(LogIn(L""));
    ASSERT_EQ(watcher.Seen().size(), 1u);
    EXPECT_EQ(watcher.Seen()[0].text,
              L"You are logged in to 16 accounts of Provider already. Please log out of one of "
              L"them first.");
    EXPECT_TRUE(sevenScript_->calls.empty());
    EXPECT_TRUE(LogIn(book_.Accounts(kSeven).front().key)) << "one of the sixteen";
}

TEST_F(Logins, EndWithALogoutOfTheAccountsOwnProvider) {
    const std::wstring key = Add(kSeven, L"one");
    sevenScript_->logOut = [this](const std::wstring& out) { book_.Remove(kSeven, out); };
    providers::LogOut(*eightInstance_, key.c_str(), nullptr);
    EXPECT_FALSE(book_.Contains(kSeven, key));
    providers::LogOut(*eightInstance_, key.c_str(), nullptr); // gone
    providers::LogOut(*eightInstance_, nullptr, nullptr);
    EXPECT_EQ(sevenScript_->calls, std::vector<std::wstring>{L"LogOut(" + key + L")"});
    EXPECT_TRUE(eightScript_->calls.empty());
}

TEST_F(Logins, AreKnownWithoutAskingAnybody) {
    const std::wstring key = Add(kSeven, L"one");
    sevenScript_->isLoggedIn = [&](const std::wstring& asked) { return asked == key; };
    EXPECT_TRUE(providers::IsLoggedIn(*eightInstance_, key.c_str()));
    EXPECT_FALSE(providers::IsLoggedIn(*sevenInstance_, Add(kSeven, L"two").c_str()));
    EXPECT_FALSE(providers::IsLoggedIn(*sevenInstance_, L""));
    EXPECT_FALSE(providers::IsLoggedIn(*sevenInstance_, nullptr));
}

TEST_F(Logins, LetTheSpaceBeAskedAnew) {
    const std::wstring key = Add(kSeven, L"one");
    sevenScript_->capabilities = 2;
    sevenScript_->space = [](auto&, HANDLE) { return std::nullopt; }; // not logged in
    std::int64_t free = 0;
    std::int64_t total = 0;
    On::GetAccountSpace::Call(Seven(), key.c_str(), &free, &total);
    EXPECT_EQ(free, SizeUnknown);
    sevenScript_->space = [](auto&, HANDLE) { return providers::AccountSpace{5, 6}; };
    EXPECT_TRUE(LogIn(key));
    On::GetAccountSpace::Call(Seven(), key.c_str(), &free, &total);
    EXPECT_EQ(free, 5);
}

} // namespace
