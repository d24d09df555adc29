#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "services/providers/storage/AccountSpaces.h"
#include "tests/unit/services/providers/storage/InstanceFixture.h"

namespace {

using obcontract::SizeUnknown;
using providers::AccountSpace;
using providers::AccountSpaces;

constexpr std::uint32_t kFreeSpace = 2;

ObLib::UniqueKernelHandle MakeEvent() {
    return ObLib::UniqueKernelHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

class AccountSpacesTest : public obtest::InstanceFixture {
protected:
    void SetUp() override {
        InstanceFixture::SetUp();
        sevenScript_->capabilities = kFreeSpace;
        eightScript_->capabilities = kFreeSpace;
        sevenScript_->space = [this](const std::wstring&, HANDLE) { return Count(7); };
        eightScript_->space = [this](const std::wstring&, HANDLE) { return Count(8); };
    }

    std::optional<AccountSpace> Count(std::int64_t bytes) {
        ++asked_;
        return AccountSpace{bytes, 100};
    }

    void ExpectSpace(const std::wstring& key, std::int64_t free, std::int64_t total) {
        std::int64_t freeBytes = 1;
        std::int64_t totalBytes = 1;
        EXPECT_TRUE(On::GetAccountSpace::Call(Seven(), key.c_str(), &freeBytes, &totalBytes));
        EXPECT_EQ(freeBytes, free);
        EXPECT_EQ(totalBytes, total);
    }

    std::atomic<int> asked_ = 0;
};

TEST_F(AccountSpacesTest, AreThoseThatEachAccountsProviderReports) {
    const std::wstring seven = Add(kSeven);
    const std::wstring eight = Add(kEight);
    ExpectSpace(seven, 7, 100);
    ExpectSpace(eight, 8, 100);
}

TEST_F(AccountSpacesTest, AskEachAccountOnceInARun) {
    const std::wstring seven = Add(kSeven);
    const std::wstring eight = Add(kEight);
    for (int question = 0; question < 3; ++question) {
        ExpectSpace(seven, 7, 100);
        ExpectSpace(eight, 8, 100);
    }
    EXPECT_EQ(asked_, 2);
}

// Each thread waits for all others: asked one after the other, none would come to an end.
TEST_F(AccountSpacesTest, AskAllAccountsOfAllProvidersSideBySide) {
    const std::wstring key = Add(kSeven);
    for (int count = 0; count < 15; ++count) Add(kSeven);
    for (int count = 0; count < 16; ++count) Add(kEight);
    const auto all = MakeEvent();
    const auto meet = [&](const std::wstring&, HANDLE) {
        if (++asked_ == 32) SetEvent(all.Get());
        WaitForSingleObject(all.Get(), 20000);
        return AccountSpace{5, 6};
    };
    sevenScript_->space = meet;
    eightScript_->space = meet;
    AccountSpaces spaces(run_, 20000);
    EXPECT_EQ(spaces.Of(key).freeBytes, 5);
    EXPECT_EQ(asked_, 32);
    for (const auto id : {kSeven, kEight}) { // also so that no thread outlives what it uses here
        for (const auto& account : book_.Accounts(id)) spaces.Of(account.key);
    }
}

TEST_F(AccountSpacesTest, AreUnknownWhenTheAnswerTakesTooLongAndStayUnknown) {
    const std::wstring slow = Add(kSeven);
    const std::wstring quick = Add(kEight);
    const auto release = std::make_shared<ObLib::UniqueKernelHandle>(MakeEvent());
    const auto came = std::make_shared<ObLib::UniqueKernelHandle>(MakeEvent());
    sevenScript_->space = [release, came](const std::wstring&, HANDLE) {
        WaitForSingleObject(release->Get(), 20000);
        SetEvent(came->Get());
        return AccountSpace{7, 100};
    };
    AccountSpaces spaces(run_, 1);
    EXPECT_EQ(spaces.Of(slow).freeBytes, SizeUnknown);
    EXPECT_EQ(spaces.Of(slow).totalBytes, SizeUnknown);
    SetEvent(release->Get());
    ASSERT_EQ(WaitForSingleObject(came->Get(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(spaces.Of(slow).freeBytes, SizeUnknown);
}

TEST_F(AccountSpacesTest, HaveTwoSecondsByDefault) { EXPECT_EQ(providers::kSpaceLimit, 2000u); }

TEST_F(AccountSpacesTest, AreUnknownForAProviderThatDoesntReportThem) {
    sevenScript_->capabilities = 0;
    ExpectSpace(Add(kSeven), SizeUnknown, SizeUnknown);
    EXPECT_EQ(asked_, 0);
}

TEST_F(AccountSpacesTest, AreUnknownWhenTheProviderCantAskOrThrows) {
    const std::wstring cant = Add(kSeven);
    const std::wstring throwing = Add(kEight);
    sevenScript_->space = [](const std::wstring&, HANDLE) { return std::nullopt; };
    eightScript_->throws = true;
    ExpectSpace(cant, SizeUnknown, SizeUnknown);
    ExpectSpace(throwing, SizeUnknown, SizeUnknown);
}

TEST_F(AccountSpacesTest, AreUnknownWithoutAnAccount) {
    ExpectSpace(L"", SizeUnknown, SizeUnknown);
    ExpectSpace(L"{01234567-89AB-CDEF-0123-456789ABCDEF}", SizeUnknown, SizeUnknown);
    EXPECT_TRUE(On::GetAccountSpace::Call(Seven(), nullptr, nullptr, nullptr));
}

TEST_F(AccountSpacesTest, PassAFullAccountsNegativeNumberOn) {
    sevenScript_->space = [](const std::wstring&, HANDLE) { return AccountSpace{-5, 100}; };
    ExpectSpace(Add(kSeven), -5, 100);
}

TEST_F(AccountSpacesTest, AskAnAccountThatCameLater) {
    ExpectSpace(Add(kSeven), 7, 100);
    ExpectSpace(Add(kEight), 8, 100);
    EXPECT_EQ(asked_, 2);
}

TEST_F(AccountSpacesTest, AskAnAccountAnewOnceItIsForgotten) {
    const std::wstring key = Add(kSeven);
    AccountSpaces spaces(run_);
    EXPECT_EQ(spaces.Of(key).freeBytes, 7);
    sevenScript_->space = [](const std::wstring&, HANDLE) { return AccountSpace{9, 100}; };
    EXPECT_EQ(spaces.Of(key).freeBytes, 7);
    spaces.Forget(key);
    EXPECT_EQ(spaces.Of(key).freeBytes, 9);
}

TEST_F(AccountSpacesTest, EndTheWaitWhenTheSessionEnds) {
    const std::wstring key = Add(kSeven);
    std::promise<void> entered;
    sevenScript_->space = [&](const std::wstring&, HANDLE ended) {
        entered.set_value();
        WaitForSingleObject(ended, INFINITE);
        return std::optional<AccountSpace>();
    };
    AccountSpaces spaces(run_, INFINITE);
    std::thread other([&] {
        entered.get_future().wait();
        run_->End();
    });
    EXPECT_EQ(spaces.Of(key).freeBytes, SizeUnknown);
    other.join();
}

// The thread that hangs keeps the providers until it has ended.
TEST_F(AccountSpacesTest, LeaveNothingBrokenWhenAThreadHangsBeyondTheSession) {
    const std::wstring key = Add(kSeven);
    const auto release = MakeEvent();
    const auto entered = MakeEvent();
    sevenScript_->space = [&](const std::wstring&, HANDLE) {
        SetEvent(entered.Get());
        WaitForSingleObject(release.Get(), 20000); // whatever the session does
        return AccountSpace{7, 100};
    };
    const std::weak_ptr<providers::StorageRun> run = run_;
    std::make_unique<AccountSpaces>(run_, 1)->Of(key);
    ASSERT_EQ(WaitForSingleObject(entered.Get(), 20000), WAIT_OBJECT_0);
    run_->End();
    sevenInstance_.reset();
    eightInstance_.reset();
    run_.reset();
    EXPECT_FALSE(run.expired());
    SetEvent(release.Get());
    for (int waited = 0; waited < 20000 && !run.expired(); ++waited) Sleep(1);
    EXPECT_TRUE(run.expired());
}

} // namespace
