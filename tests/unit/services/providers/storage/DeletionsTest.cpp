// Files that are deleted when their days are over.
#include "services/providers/storage/Deletions.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "services/providers/storage/LocalDays.h"
#include "services/providers/storage/RecordTexts.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/storage/InstanceFixture.h"

namespace {

using obcontract::CloudItem;
using providers::DeletionEnd;
using providers::DeletionSchedule;
using providers::EndOfLocalDay;
using providers::ScheduledDeletion;
using providers::StoredFile;

constexpr std::uint64_t kDay = 864'000'000'000;
const std::wstring kKey = obcontract::kProviderManagerKey;

std::uint64_t At(WORD year, WORD month, WORD day, WORD hour, WORD minute = 0) {
    SYSTEMTIME local{year, month, 0, day, hour, minute, 0, 0};
    SYSTEMTIME utc{};
    FILETIME time{};
    EXPECT_TRUE(TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc));
    EXPECT_TRUE(SystemTimeToFileTime(&utc, &time));
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

class DeletionScheduleTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }

    static ScheduledDeletion Deletion(std::uint64_t due, const std::wstring& path = L"/a.zip") {
        return {7, L"account", {path, {}, L"\"etag\"", 5'000'000'000}, due};
    }
    std::vector<std::wstring> DuePaths(std::uint64_t time) {
        std::vector<std::wstring> paths;
        for (const auto& deletion : schedule_.DueAt(time)) paths.push_back(deletion.file.path);
        return paths;
    }

    DeletionSchedule schedule_{HKEY_CURRENT_USER, kKey};
};

TEST_F(DeletionScheduleTest, ReturnsWhatIsDueInItsOrder) {
    EXPECT_FALSE(schedule_.HasAny());
    EXPECT_TRUE(schedule_.Add(Deletion(30, L"/c")));
    EXPECT_TRUE(schedule_.Add(Deletion(10, L"/a")));
    EXPECT_TRUE(schedule_.Add(Deletion(20, L"/b")));
    EXPECT_TRUE(schedule_.HasAny());
    EXPECT_TRUE(DuePaths(9).empty());
    EXPECT_EQ(DuePaths(20), (std::vector<std::wstring>{L"/a", L"/b"}));
    EXPECT_EQ(DuePaths(1000).size(), 3u);
}

TEST_F(DeletionScheduleTest, KeepsEachField) {
    ASSERT_TRUE(schedule_.Add(Deletion(10, L"/folder/\u00e9")));
    const auto due = DeletionSchedule(HKEY_CURRENT_USER, kKey).DueAt(10);
    ASSERT_EQ(due.size(), 1u);
    EXPECT_EQ(due[0].providerId, 7u);
    EXPECT_EQ(due[0].accountKey, L"account");
    EXPECT_EQ(due[0].file.path, L"/folder/\u00e9");
    EXPECT_EQ(due[0].file.version, L"\"etag\"");
    EXPECT_EQ(due[0].file.size, 5'000'000'000u);
    EXPECT_EQ(due[0].due, 10u);
}

TEST_F(DeletionScheduleTest, ForgetsWhatIsRemoved) {
    schedule_.Add(Deletion(10, L"/a"));
    schedule_.Add(Deletion(20, L"/b"));
    schedule_.Remove(schedule_.DueAt(10).at(0));
    EXPECT_EQ(DuePaths(100), std::vector<std::wstring>{L"/b"});
}

TEST_F(DeletionScheduleTest, TakesNoFileWithoutAPathOrAVersion) {
    ScheduledDeletion deletion = Deletion(10);
    deletion.file.version.clear();
    EXPECT_FALSE(schedule_.Add(deletion));
    EXPECT_FALSE(schedule_.Add(Deletion(10, L"")));
    EXPECT_FALSE(schedule_.Add(Deletion(10, std::wstring(32'001, L'x'))));
    EXPECT_FALSE(schedule_.HasAny());
    EXPECT_TRUE(schedule_.Add(Deletion(10, std::wstring(32'000, L'x'))));
    EXPECT_EQ(DuePaths(10).at(0).size(), 32'000u);
}

TEST_F(DeletionScheduleTest, LeavesOutWhatItCantRead) {
    schedule_.Add(Deletion(10));
    const std::wstring path = kKey + L"\\Deletions\\";
    obtest::SetValue(HKEY_CURRENT_USER, path + L"foreign", L"Path", L"/x");
    const std::wstring id = schedule_.DueAt(10).at(0).id;
    const std::uint32_t number = 0;
    obtest::SetRawValue(HKEY_CURRENT_USER, path + id, L"Due", REG_DWORD, &number, sizeof(number));
    EXPECT_TRUE(schedule_.DueAt(100).empty());
    EXPECT_TRUE(obtest::KeyExists(HKEY_CURRENT_USER, path + id));
    EXPECT_FALSE(DeletionSchedule(HKEY_CURRENT_USER, std::wstring(300, L'k')).Add(Deletion(10)));
}

TEST(LocalDays, EndAtMidnightOfTheUsersClock) {
    EXPECT_EQ(EndOfLocalDay(At(2026, 11, 22, 14), 0), At(2026, 11, 23, 0));
    EXPECT_EQ(EndOfLocalDay(At(2026, 11, 22, 23, 59), 0), At(2026, 11, 23, 0));
    EXPECT_EQ(EndOfLocalDay(At(2026, 11, 22, 0), 0), At(2026, 11, 23, 0));
    EXPECT_EQ(EndOfLocalDay(At(2026, 11, 22, 14), 7), At(2026, 11, 30, 0));
    EXPECT_EQ(EndOfLocalDay(At(2026, 12, 31, 14), 1), At(2027, 1, 2, 0));
    EXPECT_EQ(EndOfLocalDay(At(2028, 2, 28, 14), 1), At(2028, 3, 1, 0)); // a leap year
}

TEST(LocalDays, AreBoundedByTheCalendar) {
    const std::uint64_t now = At(2026, 11, 22, 14);
    EXPECT_GT(EndOfLocalDay(now, 2'147'483'647), now + 1'000'000 * kDay);
    EXPECT_EQ(EndOfLocalDay(now, 2'147'483'647), EndOfLocalDay(now, 2'000'000));
}

class DeletionOfUploads : public obtest::InstanceFixture {
protected:
    void SetUp() override {
        InstanceFixture::SetUp();
        key_ = Add(kSeven);
        now_ = providers::TimeNow();
        users_ = run_.use_count();
        sevenScript_->remove = [this](auto&, auto&, HANDLE) {
            ++deletions_;
            return end_.load();
        };
    }

    // The record of a file that was uploaded and shared in this run.
    CloudItem Shared(const std::wstring& version = L"version", const std::wstring& id = L"share") {
        const auto upload = run_->uploads.Add(key_, {L"/a.zip", L"a.zip", version, 5});
        upload->isShared = true;
        upload->shareId = id;
        upload->link = L"https://example.org/1";
        return ItemWith(upload->link);
    }
    CloudItem ItemWith(const std::wstring& link) {
        return providers::ItemOf(providers::ProfileOf(kSeven, {key_, L""}), L"a.zip", link).value();
    }
    bool Schedule(const CloudItem& item, std::int32_t days) {
        return providers::ScheduleDeletion(run_, item, days, now_);
    }
    void AddDue(const std::wstring& path, const std::wstring& accountKey,
                std::uint32_t providerId = kSeven, std::uint64_t age = 1) {
        ASSERT_TRUE(
            run_->Deletions().Add({providerId, accountKey, {path, {}, L"version", 5}, now_ - age}));
    }
    bool IsLeft(const std::wstring& path) {
        for (const auto& deletion : run_->Deletions().DueAt(~0ull)) {
            if (deletion.file.path == path) return true;
        }
        return false;
    }
    // Starts the thread and waits until the condition is true.
    template <class Condition>
    void StartUntil(Condition condition) {
        providers::StartDeletions(run_, now_);
        EXPECT_TRUE(obtest::WaitUntil(condition));
    }

    // Each thread keeps the run.
    void WaitForTheThreads() {
        EXPECT_TRUE(obtest::WaitUntil([&] { return run_.use_count() == users_; }));
    }
    void StartAndWait() {
        providers::StartDeletions(run_, now_);
        WaitForTheThreads();
    }

    std::wstring key_;
    std::uint64_t now_ = 0;
    long users_ = 0; // of the run, without a thread
    std::atomic<int> deletions_ = 0;
    std::atomic<DeletionEnd> end_ = DeletionEnd::Gone; // of seven's files
};

TEST_F(DeletionOfUploads, IsWrittenDownForTheEndOfTheDay) {
    ASSERT_TRUE(Schedule(Shared(), 7));
    const auto all = run_->Deletions().DueAt(~0ull);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].due, EndOfLocalDay(now_, 7));
    EXPECT_EQ(all[0].providerId, kSeven);
    EXPECT_EQ(all[0].accountKey, key_);
    EXPECT_EQ(all[0].file.path, L"/a.zip");
    EXPECT_EQ(all[0].file.version, L"version");
    EXPECT_EQ(all[0].file.size, 5u);
}

TEST_F(DeletionOfUploads, KeepsNoLinkAndNoName) {
    ASSERT_TRUE(Schedule(Shared(), 7));
    const std::wstring path = kKey + L"\\Deletions\\" + run_->Deletions().DueAt(~0ull).at(0).id;
    auto names = obtest::ValueNames(HKEY_CURRENT_USER, path);
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Account", L"Due", L"Path", L"Provider", L"Size",
                                                L"Version"}));
    for (const auto& name : names) {
        const auto text = obtest::ReadValue(HKEY_CURRENT_USER, path, name);
        EXPECT_EQ(text.value_or(L"").find(L"example.org"), std::wstring::npos);
    }
}

TEST_F(DeletionOfUploads, LetsTheLinkEndWhereItsServerCan) {
    std::vector<std::wstring> calls;
    sevenScript_->setExpiry = [&](const std::wstring& key, const std::wstring& id,
                                  std::int32_t days) {
        EXPECT_EQ(key, key_);
        calls.push_back(id + L" " + std::to_wstring(days));
        return false; // can't: the schedule remains
    };
    EXPECT_TRUE(Schedule(Shared(), 7));
    EXPECT_EQ(calls, std::vector<std::wstring>{L"share 7"});
    EXPECT_TRUE(IsLeft(L"/a.zip"));
}

TEST_F(DeletionOfUploads, LetsNoLinkEndWhoseFileItCantWriteDown) {
    sevenScript_->setExpiry = [](auto&, auto&, std::int32_t) {
        ADD_FAILURE() << "the mail promises nothing";
        return true;
    };
    const auto upload = run_->uploads.Add(key_, {std::wstring(32'001, L'x'), {}, L"version", 5});
    upload->isShared = true;
    upload->shareId = L"share";
    EXPECT_FALSE(Schedule(ItemWith(upload->link), 7));
    EXPECT_FALSE(run_->Deletions().HasAny());
}

TEST_F(DeletionOfUploads, LeavesALinkOfTodayToTheSchedule) {
    sevenScript_->setExpiry = [](auto&, auto&, std::int32_t) {
        ADD_FAILURE() << "0 days leave it to the schedule";
        return true;
    };
    EXPECT_TRUE(Schedule(Shared(), 0));
    EXPECT_EQ(run_->Deletions().DueAt(~0ull).at(0).due, EndOfLocalDay(now_, 0));
}

TEST_F(DeletionOfUploads, AsksNobodyForALinkWithoutAShare) {
    sevenScript_->setExpiry = [](auto&, auto&, std::int32_t) {
        ADD_FAILURE() << "there is no share";
        return true;
    };
    EXPECT_TRUE(Schedule(Shared(L"version", L""), 7));
}

TEST_F(DeletionOfUploads, IsWrittenDownAlsoWhenTheProviderThrows) {
    const CloudItem item = Shared();
    sevenScript_->throws = true;
    EXPECT_TRUE(Schedule(item, 7));
}

TEST_F(DeletionOfUploads, IsRefusedForWhatIsntAFileOfThisRun) {
    const CloudItem item = Shared();
    EXPECT_FALSE(Schedule(ItemWith(L"https://example.org/2"), 7));
    EXPECT_FALSE(Schedule(ItemWith(L""), 7));
    CloudItem other = item;
    other.profile.accountKey[0] = L'x';
    EXPECT_FALSE(Schedule(other, 7));
    EXPECT_FALSE(Schedule(item, -1));
    CloudItem endless = item;
    std::ranges::fill(endless.link, L'x');
    EXPECT_FALSE(Schedule(endless, 7));
    EXPECT_FALSE(run_->Deletions().HasAny());
}

TEST_F(DeletionOfUploads, IsRefusedForAFileThatIsntSharedOrHasNoVersion) {
    const auto unshared = run_->uploads.Add(key_, {L"/b.zip", L"b.zip", L"version", 5});
    EXPECT_FALSE(Schedule(ItemWith(unshared->link), 7));
    EXPECT_FALSE(Schedule(Shared(L""), 7));
    EXPECT_FALSE(run_->Deletions().HasAny());
}

TEST_F(DeletionOfUploads, DeletesWhatIsDueWithWhatIsKnownOfIt) {
    const DWORD dialogThread = GetCurrentThreadId();
    AddDue(L"/a.zip", key_);
    sevenScript_->remove = [&](const std::wstring& key, const StoredFile& file, HANDLE ended) {
        EXPECT_EQ(key, key_);
        EXPECT_EQ(file.path, L"/a.zip");
        EXPECT_EQ(file.version, L"version");
        EXPECT_EQ(file.size, 5u);
        EXPECT_EQ(ended, run_->Ended());
        EXPECT_NE(GetCurrentThreadId(), dialogThread);
        return DeletionEnd::Gone;
    };
    StartUntil([&] { return !IsLeft(L"/a.zip"); });
}

TEST_F(DeletionOfUploads, ForgetsAFileThatHasChanged) {
    AddDue(L"/a.zip", key_);
    end_ = DeletionEnd::Changed;
    StartUntil([&] { return !IsLeft(L"/a.zip"); });
    EXPECT_EQ(deletions_, 1);
}

TEST_F(DeletionOfUploads, KeepsWhatCantBeReachedForALaterRun) {
    AddDue(L"/a.zip", key_);
    AddDue(L"/later.zip", Add(kEight), kEight);
    end_ = DeletionEnd::Unreachable;
    eightScript_->remove = [](auto&, auto&, HANDLE) { return DeletionEnd::Gone; };
    StartUntil(
        [&] { return !IsLeft(L"/later.zip"); }); // comes after it, in the registry or in time
    EXPECT_TRUE(obtest::WaitUntil([&] { return deletions_ == 1; }));
    EXPECT_TRUE(IsLeft(L"/a.zip"));
    end_ = DeletionEnd::Gone;
    StartUntil([&] { return !IsLeft(L"/a.zip"); });
}

TEST_F(DeletionOfUploads, KeepsAFileWhoseProviderThrows) {
    AddDue(L"/a.zip", key_);
    AddDue(L"/b.zip", Add(kEight), kEight);
    sevenScript_->throws = true;
    eightScript_->remove = [](auto&, auto&, HANDLE) { return DeletionEnd::Gone; };
    StartUntil([&] { return !IsLeft(L"/b.zip"); });
    EXPECT_TRUE(IsLeft(L"/a.zip"));
}

// The mail promised it.
TEST_F(DeletionOfUploads, IsDoneAlsoAfterALogout) {
    AddDue(L"/a.zip", key_);
    ASSERT_TRUE(book_.Remove(kSeven, key_));
    StartUntil([&] { return !IsLeft(L"/a.zip"); });
    EXPECT_EQ(deletions_, 1);
}

TEST_F(DeletionOfUploads, KeepsAFileOfAProviderThatThisBuildLacks) {
    AddDue(L"/a.zip", L"{01234567-89AB-CDEF-0123-456789ABCDEF}", 9);
    AddDue(L"/b.zip", key_);
    StartUntil([&] { return !IsLeft(L"/b.zip"); });
    WaitForTheThreads();
    EXPECT_TRUE(IsLeft(L"/a.zip"));
}

TEST_F(DeletionOfUploads, IsntKeptWaitingByAnAccountThatIsSilent) {
    AddDue(L"/a.zip", key_, kSeven, 100);
    AddDue(L"/b.zip", Add(kEight), kEight);
    sevenScript_->remove = [](auto&, auto&, HANDLE ended) {
        WaitForSingleObject(ended, obtest::kUiLimit);
        return DeletionEnd::Unreachable;
    };
    eightScript_->remove = [](auto&, auto&, HANDLE) { return DeletionEnd::Gone; };
    StartUntil([&] { return !IsLeft(L"/b.zip"); });
    run_->End();
    WaitForTheThreads();
    EXPECT_TRUE(IsLeft(L"/a.zip"));
}

TEST_F(DeletionOfUploads, StopsInAnAccountAtAFileThatCantBeReached) {
    AddDue(L"/a.zip", key_, kSeven, 2);
    AddDue(L"/b.zip", key_, kSeven, 1);
    std::vector<std::wstring> tried;
    sevenScript_->remove = [&](auto&, const StoredFile& file, HANDLE) {
        tried.push_back(file.path);
        return DeletionEnd::Unreachable;
    };
    constexpr std::uint64_t kSecond = 10'000'000;
    now_ += now_ / kSecond % 2 * kSecond;
    StartAndWait();
    now_ += kSecond;
    StartAndWait(); // begins with the other one
    EXPECT_EQ(tried, (std::vector<std::wstring>{L"/a.zip", L"/b.zip"}));
}

TEST_F(DeletionOfUploads, GivesAFileUpThatWasntReachedForAYear) {
    AddDue(L"/a.zip", key_, kSeven, 364 * kDay);
    AddDue(L"/b.zip", Add(kEight), kEight, 366 * kDay);
    end_ = DeletionEnd::Unreachable; // as eight's is
    StartAndWait();
    EXPECT_TRUE(IsLeft(L"/a.zip"));
    EXPECT_FALSE(IsLeft(L"/b.zip"));
}

TEST_F(DeletionOfUploads, LeavesWhatIsntDueAlone) {
    end_ = DeletionEnd::Gone;
    ASSERT_TRUE(Schedule(Shared(), 0));
    AddDue(L"/due.zip", key_);
    StartUntil([&] { return !IsLeft(L"/due.zip"); });
    EXPECT_TRUE(IsLeft(L"/a.zip"));
    EXPECT_EQ(deletions_, 1);
}

TEST_F(DeletionOfUploads, BeginsNoFurtherFileOnceTheSessionHasEnded) {
    AddDue(L"/a.zip", key_);
    AddDue(L"/b.zip", key_);
    sevenScript_->remove = [this](auto&, auto&, HANDLE) {
        ++deletions_;
        run_->End();
        return DeletionEnd::Unreachable;
    };
    StartAndWait();
    EXPECT_EQ(deletions_, 1);
}

class LeftParts : public DeletionOfUploads {
protected:
    void SetUp() override {
        DeletionOfUploads::SetUp();
        sevenScript_->removePart = [this](auto&, const std::wstring& path, HANDLE) {
            const std::lock_guard guard(lock_);
            removed_.push_back(path);
            return end_.load();
        };
    }
    std::wstring Note(const std::wstring& path, std::uint32_t provider = kSeven) {
        return run_->Parts().Add({provider, key_, path});
    }
    std::wstring KeyOf(const std::wstring& id) { return kKey + L"\\Parts\\" + id; }
    bool IsNoted(const std::wstring& id) { return obtest::KeyExists(HKEY_CURRENT_USER, KeyOf(id)); }
    // A session so many days after the notes were made.
    std::vector<std::wstring> RemovedAfter(std::uint64_t days, std::uint64_t more = kDay / 1000) {
        now_ = providers::TimeNow() + days * kDay + more;
        StartAndWait();
        const std::lock_guard guard(lock_);
        return std::exchange(removed_, {});
    }

    std::mutex lock_; // of the next one
    std::vector<std::wstring> removed_;
};

TEST_F(LeftParts, AreRemovedOnceTheyAreADayOld) {
    const std::wstring id = Note(L"/a.part");
    ASSERT_NE(id, L"");
    EXPECT_TRUE(RemovedAfter(0).empty()) << "its upload may still run";
    EXPECT_TRUE(IsNoted(id));
    EXPECT_EQ(RemovedAfter(1), std::vector<std::wstring>{L"/a.part"});
    EXPECT_FALSE(IsNoted(id));
    EXPECT_FALSE(run_->Parts().HasAny());
}

TEST_F(LeftParts, AreTriedAgainWhileTheyCantBeReachedForAYearAtMost) {
    const std::wstring id = Note(L"/a.part");
    end_ = DeletionEnd::Unreachable;
    EXPECT_EQ(RemovedAfter(2).size(), 1u);
    EXPECT_TRUE(IsNoted(id));
    EXPECT_EQ(RemovedAfter(364).size(), 1u);
    EXPECT_TRUE(IsNoted(id));
    EXPECT_EQ(RemovedAfter(366).size(), 1u);
    EXPECT_FALSE(IsNoted(id));
}

TEST_F(LeftParts, AreForgottenWhenTheyArentOfAnUpload) {
    const std::wstring id = Note(L"/mine.zip");
    end_ = DeletionEnd::Changed;
    EXPECT_EQ(RemovedAfter(2).size(), 1u);
    EXPECT_FALSE(IsNoted(id));
}

TEST_F(LeftParts, StayOfAProviderThatThisBuildLacks) {
    const std::wstring id = Note(L"/a.part", 9);
    EXPECT_TRUE(RemovedAfter(2).empty());
    EXPECT_TRUE(IsNoted(id));
}

TEST_F(LeftParts, AreRemovedAlsoAfterALogoutAndBesideWhatIsDue) {
    Note(L"/a.part");
    Note(L"/b.part");
    AddDue(L"/a.zip", key_);
    ASSERT_TRUE(book_.Remove(kSeven, key_));
    EXPECT_EQ(RemovedAfter(2).size(), 2u);
    EXPECT_FALSE(IsLeft(L"/a.zip"));
}

TEST_F(LeftParts, AreNotedWithoutTheirFilesNameAndALink) {
    auto names = obtest::ValueNames(HKEY_CURRENT_USER, KeyOf(Note(L"/a.part")));
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Account", L"Path", L"Provider"}));
}

TEST_F(LeftParts, HaveNoNoteThatCantBeRead) {
    EXPECT_EQ(Note(L""), L"");
    EXPECT_EQ(Note(std::wstring(32'001, L'x')), L"");
    const std::wstring id = Note(L"/a.part");
    const std::uint32_t number = 0;
    obtest::SetRawValue(HKEY_CURRENT_USER, KeyOf(id), L"Path", REG_DWORD, &number, sizeof(number));
    obtest::SetValue(HKEY_CURRENT_USER, KeyOf(L"foreign"), L"Path", L"/x");
    EXPECT_TRUE(RemovedAfter(2).empty());
    EXPECT_FALSE(IsNoted(id));
    EXPECT_TRUE(IsNoted(L"foreign"));
}

TEST_F(LeftParts, LoseTheirNoteWithTheirUploadUnlessTheyAreLeft) {
    const providers::PartNotes& notes = run_->Parts();
    {
        providers::PartNote done(notes, {kSeven, key_, L"/done.part"});
        EXPECT_TRUE(notes.HasAny());
        done.Remove();
        EXPECT_FALSE(notes.HasAny());
        const providers::PartNote left(notes, {kSeven, key_, L"/left.part"});
    }
    EXPECT_EQ(RemovedAfter(2), std::vector<std::wstring>{L"/left.part"});
}

TEST_F(DeletionOfUploads, RemovesWhatWasWrittenHalfAfterADay) {
    const std::wstring half = L"{01234567-89AB-CDEF-0123-456789ABCDEF}";
    const std::wstring account = kKey + L"\\Accounts\\7\\" + half;
    const std::wstring deletion = kKey + L"\\Deletions\\" + half;
    const auto exists = [](const std::wstring& path) {
        return obtest::KeyExists(HKEY_CURRENT_USER, path);
    };
    const std::uint64_t order = 7;
    obtest::SetRawValue(HKEY_CURRENT_USER, account, L"Order", REG_QWORD, &order, sizeof(order));
    StartAndWait();
    EXPECT_TRUE(exists(account)) << "it may still be written";
    now_ += kDay + kDay / 1000;
    StartAndWait();
    EXPECT_FALSE(exists(account));
    EXPECT_TRUE(book_.Contains(kSeven, key_));
    obtest::SetValue(HKEY_CURRENT_USER, deletion, L"Path", L"/a.zip");
    obtest::SetValue(HKEY_CURRENT_USER, kKey + L"\\Deletions\\foreign", L"Path", L"/a.zip");
    now_ = providers::TimeNow();
    StartAndWait();
    EXPECT_TRUE(exists(deletion)) << "it may still be written";
    now_ += kDay + kDay / 1000;
    StartAndWait();
    EXPECT_FALSE(exists(deletion));
    EXPECT_TRUE(exists(kKey + L"\\Deletions\\foreign"));
}

} // namespace
