#include "services/providers/webdav/DavUpload.h"

#include <gtest/gtest.h>

#include <thread>

#include "contracts/ProviderManager.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/webdav/DavUploadFixture.h"

namespace providers {
namespace {

class DavUploadTest : public DavUploadAccount {};
INSTANTIATE_TEST_SUITE_P(Servers, DavUploadTest, testing::Values("apache", "sabre"));

TEST_P(DavUploadTest, StoresAFileInItsFolder) {
    const UploadResult result = Upload(L"100% \u20AC.zip");
    ASSERT_EQ(UploadEnd::Done, result.end);
    EXPECT_EQ((std::vector<std::wstring>{L"a b\\\u00E4\\100% \u20AC.zip"}), Files());
    EXPECT_EQ(content_, Stored(L"a b\\\u00E4\\100% \u20AC.zip"));
    EXPECT_TRUE(result.stored.path.ends_with(L"/dav/a%20b/%C3%A4/100%25%20%E2%82%AC.zip"));
    EXPECT_EQ(L"100% \u20AC.zip", result.stored.name);
    EXPECT_EQ(content_.size(), result.stored.size);
    EXPECT_FALSE(result.stored.version.empty());
    EXPECT_EQ(content_.size(), progress_.sent_);
    EXPECT_EQ(content_.size(), progress_.total_);
}

TEST_P(DavUploadTest, StoresAnEmptyFile) {
    content_.clear();
    source_ = folder_.File(L"empty.zip", "");
    EXPECT_EQ(UploadEnd::Done, Upload(L"empty.zip", L"").end);
    EXPECT_EQ("", Stored(L"empty.zip"));
}

// The connection breaks once. The zeros that were on their way are given to the server's file
// meanwhile, so that few bytes of each file are sent.
TEST_P(DavUploadTest, GoesOnAfterABreakToFourGibibytesAndToOneByteMore) {
    if (!IsApache()) return; // the other one reads a file as a whole for its version
    constexpr std::uint64_t kFourGibibytes = 1ull << 32;
    for (const std::uint64_t size : {kFourGibibytes, kFourGibibytes + 1}) {
        source_ = folder_ / L"huge";
        MakeSparse(source_, size);
        relay_.Begin(GetParam());
        relay_.On("PUT", "cutbody 1000", 3); // after those that try whether the server takes parts
        relay_.On("PROPFIND", "hold", 2);
        std::thread network([&] {
            relay_.WaitUntilHeld(1);
            const auto part = Files();
            ASSERT_EQ(1u, part.size());
            MakeSparse(FilesOf(Server()) + L"\\" + part[0], size - 100'000);
            relay_.Release();
        });
        const UploadResult result = Upload(L"huge.zip", L"");
        network.join();
        ASSERT_EQ(UploadEnd::Done, result.end) << ToUtf8(result.sentence);
        EXPECT_EQ(size, result.stored.size);
        EXPECT_FALSE(result.stored.version.empty());
        EXPECT_EQ((std::vector<std::wstring>{L"huge.zip"}), Files());
        const auto there = client_.Look(Url("huge.zip"));
        ASSERT_EQ("done", Outcome(there));
        EXPECT_EQ(size, std::get<DavItem>(there).size);
        EXPECT_EQ(5, Count("PUT")) << testing::PrintToString(relay_.Requests());
        EXPECT_EQ("done", Outcome(client_.Discard(Url("huge.zip"))));
    }
}

TEST_P(DavUploadTest, ReplacesNoFile) {
    ASSERT_EQ("done", Put("taken.zip", "old"));
    EXPECT_EQ(UploadEnd::NameTaken, Upload(L"taken.zip", L"").end);
    EXPECT_EQ("old", Stored(L"taken.zip"));
    EXPECT_EQ((std::vector<std::wstring>{L"taken.zip"}), Files());
    EXPECT_EQ(1, Count("PUT")) << "no byte is sent when the name is taken";
}

// Somebody else takes the name between the look and the move.
TEST_P(DavUploadTest, OnlyMovesInTheSecondRunWhatIsOnTheServerAlready) {
    relay_.On("MOVE", "status 412");
    EXPECT_EQ(UploadEnd::NameTaken, Upload(L"a.zip", L"").end);
    ASSERT_EQ(1u, Files().size());
    relay_.Begin(GetParam());
    ASSERT_EQ(UploadEnd::Done, Upload(L"b.zip", L"new").end);
    EXPECT_EQ(0, Count("PUT"));
    EXPECT_EQ((std::vector<std::wstring>{L"new\\b.zip"}), Files());
    EXPECT_EQ(content_, Stored(L"new\\b.zip"));
}

TEST_P(DavUploadTest, SendsAnotherFileInTheSecondRun) {
    relay_.On("MOVE", "status 412");
    EXPECT_EQ(UploadEnd::NameTaken, Upload(L"a.zip", L"").end);
    content_ = ContentOf(1000);
    source_ = folder_.File(L"other.zip", content_);
    ASSERT_EQ(UploadEnd::Done, Upload(L"a.zip", L"").end);
    EXPECT_EQ((std::vector<std::wstring>{L"a.zip"}), Files());
    EXPECT_EQ(content_, Stored(L"a.zip"));
}

TEST_P(DavUploadTest, AsksAgainForAPasswordThatNoLongerCounts) {
    const HttpLogin right = login_;
    login_.password = ObLib::Secret("old");
    ask_ = [&](HWND) { return std::optional(right); };
    EXPECT_EQ(UploadEnd::Done, Upload(L"a.zip").end);
    EXPECT_EQ(1, progress_.asked_);
    login_ = right;
}

TEST_P(DavUploadTest, GoesOnAfterAPasswordThatWasRevokedMidway) {
    relay_.On("MOVE", "status 401");
    ask_ = [&](HWND) { return std::optional(login_); };
    EXPECT_EQ(UploadEnd::Done, Upload(L"a.zip", L"").end);
    EXPECT_EQ(1, Count("PUT")) << "the bytes aren't sent again";
    EXPECT_EQ((std::vector<std::wstring>{L"a.zip"}), Files());
}

TEST_P(DavUploadTest, IsCancelledWithoutANewPassword) {
    relay_.On("PUT", "status 401");
    ask_ = [](HWND) { return std::optional<HttpLogin>(); };
    const UploadResult result = Upload(L"a.zip");
    EXPECT_EQ(UploadEnd::Cancelled, result.end);
    EXPECT_EQ(L"", result.sentence);
    EXPECT_EQ(std::vector<std::wstring>{}, Files());
}

// A server may store the bytes only after they were deleted, as a proxy with the whole request may
// make it: a later session removes them.
TEST_P(DavUploadTest, KeepsTheNoteOfBytesThatAreStoredAfterTheirDeletion) {
    obtest::ClearProductRegistry();
    const PartNotes notes(AccountBook(HKEY_CURRENT_USER, obcontract::kProviderManagerKey));
    DavUpload upload(session_, kNoPauses, DavUpload::Notes{notes, L"account"});
    relay_.On("PUT", "later 12 504");
    EXPECT_EQ(UploadEnd::Failed,
              upload.Run({root_, login_}, {source_, L"a.zip", L"c"}, progress_, ask_).end);
    EXPECT_EQ(1, Count("DELETE"));
    EXPECT_EQ(std::vector<std::wstring>{}, Files());
    EXPECT_TRUE(obtest::WaitUntil([&] {
        EXPECT_EQ("done", Outcome(client_.Look(root_))); // one request more
        return Files().size() == 1;
    }));
    const auto noted = notes.OldAt(UINT64_MAX);
    ASSERT_EQ(1u, noted.size());
    EXPECT_EQ(DeletionEnd::Gone, RemoveDavPart(client_, root_, noted[0].path));
    EXPECT_EQ(std::vector<std::wstring>{}, Files());
    obtest::ClearProductRegistry();
}

TEST_P(DavUploadTest, LeavesNothingAfterACancelAtAnyStep) {
    for (const char* method : {"PROPFIND", "MKCOL", "PUT", "MOVE"}) {
        RecordedProgress progress;
        relay_.Begin(GetParam());
        relay_.On(method, method == std::string("PUT") ? "holdreply" : "hold");
        std::thread canceller([&] {
            relay_.WaitUntilHeld(1);
            progress.Cancel();
        });
        const UploadResult result =
            upload_.Run({root_, login_}, {source_, L"a.zip", L"c"}, progress, ask_);
        canceller.join();
        EXPECT_EQ(UploadEnd::Cancelled, result.end) << method;
        relay_.Release();
        relay_.WaitUntilHeld(0);
        EXPECT_EQ(std::vector<std::wstring>{}, Files()) << method;
    }
}

TEST_P(DavUploadTest, IsDoneWhenTheCancelComesAfterTheLastStep) {
    relay_.On("MOVE", "holdreply");
    std::thread canceller([&] {
        relay_.WaitUntilHeld(1);
        progress_.Cancel();
    });
    const UploadResult result = Upload(L"a.zip", L"");
    canceller.join();
    relay_.Release();
    EXPECT_EQ(UploadEnd::Done, result.end);
    EXPECT_EQ((std::vector<std::wstring>{L"a.zip"}), Files());
    EXPECT_FALSE(result.stored.version.empty());
}

// A session that begins while a long upload runs takes no note of it for an old one.
TEST_P(DavUploadTest, RenewsTheNoteOfAnUploadThatTakesLong) {
    obtest::ClearProductRegistry();
    const AccountBook book(HKEY_CURRENT_USER, obcontract::kProviderManagerKey);
    const PartNotes notes(book);
    const auto ids = [&] {
        std::vector<std::wstring> found;
        for (const NotedPart& part : notes.OldAt(UINT64_MAX)) found.push_back(part.id);
        return found;
    };
    std::vector<std::wstring> seen;
    class Watched final : public UploadProgress {
    public:
        explicit Watched(std::function<void()> shown) : shown_(std::move(shown)) {}
        void Show(std::uint64_t, std::uint64_t) override { shown_(); }
        HANDLE Cancelled() const override { return nullptr; }
        bool Ask(const std::function<void(HWND)>&) override { return false; }

    private:
        std::function<void()> shown_;
    } progress([&] {
        const auto now = ids();
        ASSERT_EQ(1u, now.size());
        if (seen.empty() || seen.back() != now[0]) seen.push_back(now[0]);
    });
    DavUpload upload(session_, kNoPauses, DavUpload::Notes{notes, L"account", 0});
    const UploadResult result =
        upload.Run({root_, login_}, {source_, L"a.zip", L""}, progress, ask_);
    EXPECT_EQ(UploadEnd::Done, result.end);
    EXPECT_GT(seen.size(), 1u);
    EXPECT_TRUE(ids().empty());
    obtest::ClearProductRegistry();
}

TEST_P(DavUploadTest, ReportsAFileThatCannotBeRead) {
    source_ = folder_ / L"none.zip";
    const UploadResult result = Upload(L"a.zip");
    EXPECT_EQ(UploadEnd::Failed, result.end);
    EXPECT_NE(std::wstring::npos, result.sentence.find(L"can't be read"));
    EXPECT_EQ("", relay_.Methods());
}

} // namespace
} // namespace providers
