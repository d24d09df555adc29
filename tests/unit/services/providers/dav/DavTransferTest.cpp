#include "services/providers/dav/DavTransfer.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/services/providers/dav/DavFixture.h"

namespace providers {
namespace {

constexpr std::size_t kSize = 900'001; // more than three blocks
constexpr std::uint64_t kAlwaysResumable = 0;
constexpr std::uint64_t kNeverResumable = UINT64_MAX;

std::string Content(std::size_t size) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 31 + i / 4096);
    return content;
}

class DavTransferTest : public DavAccount {
protected:
    // Stores the content under the name "up".
    std::string Send(const std::string& content, std::uint64_t resumableSize,
                     bool resumes = false) {
        const ObLib::UniqueKernelHandle file(CreateFileW(folder_.File(L"source", content).c_str(),
                                                         GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                         OPEN_EXISTING, 0, nullptr));
        const auto progress = [this](std::uint64_t sent) { sent_.push_back(sent); };
        DavTransfer transfer(client_, Url("up"), {file.Get(), content.size()}, progress,
                             resumableSize);
        return Outcome(transfer.Run(resumes));
    }

    obtest::TestFolder folder_;
    std::vector<std::uint64_t> sent_;
};
INSTANTIATE_TEST_SUITE_P(Servers, DavTransferTest, testing::Values("apache", "sabre"));

TEST_P(DavTransferTest, StoresFilesOfAnySizeInEitherWay) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}, kSize}) {
        for (const std::uint64_t resumable : {kAlwaysResumable, kNeverResumable}) {
            ASSERT_EQ("done", Send(Content(size), resumable)) << size;
            EXPECT_EQ(Content(size), Stored(L"up")) << size;
            EXPECT_EQ(size, sent_.back());
            EXPECT_EQ("done", Outcome(client_.Discard(Url("up"))));
        }
    }
}

TEST_P(DavTransferTest, GoesOnWhereTheServerIsAfterABreak) {
    // Apache keeps what came of a part; the other one is made to.
    relay_.On("PUT", IsApache() ? "cutbody 500000" : "keepbody 500000", IsApache() ? 3 : 0);
    EXPECT_EQ("done", Send(Content(kSize), kAlwaysResumable));
    EXPECT_EQ(Content(kSize), Stored(L"up"));
    const auto requests = relay_.Requests();
    const bool goesOn =
        std::any_of(requests.begin(), requests.end(), [&](const std::string& request) {
            const std::string rest = std::to_string(kSize - 500'000 - (IsApache() ? 2 : 0));
            return request.starts_with((IsApache() ? "PUT /dav/up " : "PATCH /dav/up ") + rest +
                                       " 20");
        });
    EXPECT_TRUE(goesOn) << testing::PrintToString(requests);
}

TEST_P(DavTransferTest, GoesOnAfterABreakOfASmallFileToo) {
    relay_.On("PUT", "keepbody 300000");
    EXPECT_EQ("done", Send(Content(kSize), kNeverResumable));
    EXPECT_EQ(Content(kSize), Stored(L"up"));
    const auto requests = relay_.Requests();
    for (std::size_t i = 1; i < requests.size(); ++i)
        EXPECT_EQ(std::string::npos, requests[i].find(" " + std::to_string(kSize) + " "))
            << requests[i];
}

TEST_P(DavTransferTest, BeginsAnewWhereNothingIsKept) {
    relay_.On("PUT", "cutbody 500000");
    EXPECT_EQ("done", Send(Content(kSize), kNeverResumable));
    EXPECT_EQ(Content(kSize), Stored(L"up"));
}

TEST_P(DavTransferTest, GoesOnInALaterRun) {
    relay_.On("PUT", "keepbody 400000");
    relay_.On("PUT", "refuse", 0, 100);
    relay_.On("PATCH", "refuse", 0, 100);
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Send(Content(kSize), kNeverResumable));
    relay_.Begin(GetParam());
    EXPECT_EQ("done", Send(Content(kSize), kNeverResumable, true));
    EXPECT_EQ(Content(kSize), Stored(L"up"));
    for (const std::string& request : relay_.Requests())
        EXPECT_EQ(std::string::npos, request.find(" " + std::to_string(kSize) + " ")) << request;
}

TEST_P(DavTransferTest, SendsNothingAgainWhenOnlyTheReplyIsLost) {
    relay_.On("PUT", "swallow");
    EXPECT_EQ("done", Send(Content(kSize), kNeverResumable));
    EXPECT_EQ("PUT PROPFIND", relay_.Methods());
    EXPECT_EQ(Content(kSize), Stored(L"up"));
}

TEST_P(DavTransferTest, SendsTheWholeFileWhereAServerIgnoresRanges) {
    // This reply to the part comes from a server that has stored nothing of it.
    if (!IsApache()) return;
    relay_.On("PUT", "status 204", 2);
    EXPECT_EQ("done", Send(Content(kSize), kAlwaysResumable));
    EXPECT_EQ(Content(kSize), Stored(L"up"));
    relay_.On("PUT", "status 501", 1);
    EXPECT_EQ("done", Send(Content(kSize), kAlwaysResumable));
    EXPECT_EQ(Content(kSize), Stored(L"up"));
}

TEST_P(DavTransferTest, FailsWhenTheServerHasAnotherLength) {
    relay_.On("PUT", "sink", 0, 100);
    EXPECT_EQ(Outcome(DavFault::WrongSize, 0), Send(Content(kSize), kNeverResumable));
}

TEST_P(DavTransferTest, EndsAfterSomeBreaksInARow) {
    relay_.On("PUT", "refuse", 0, 100);
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Send(Content(kSize), kNeverResumable));
    EXPECT_EQ("PUT PROPFIND PUT PROPFIND PUT PROPFIND PUT PROPFIND", relay_.Methods());
}

TEST_P(DavTransferTest, EndsWithWhatTheServerRefuses) {
    for (const auto& [reply, fault, status] :
         {std::tuple{"status 413", DavFault::TooLarge, 413},
          std::tuple{"status 507", DavFault::NoSpace, 507},
          std::tuple{"status 423", DavFault::Locked, 423},
          std::tuple{"status 401", DavFault::WrongLogin, 401}}) {
        relay_.Begin(GetParam());
        relay_.On("PUT", reply);
        EXPECT_EQ(Outcome(fault, status), Send(Content(kSize), kNeverResumable)) << reply;
        EXPECT_EQ("PUT", relay_.Methods());
        EXPECT_EQ("none", Stored(L"up"));
    }
}

TEST_P(DavTransferTest, EndsAtOnceWhenItIsCancelled) {
    relay_.On("PUT", "hold");
    std::thread canceller([&] {
        relay_.WaitUntilHeld(1);
        SetEvent(cancelled_.Get());
    });
    EXPECT_EQ(Outcome(HttpFault::Cancelled), Send(Content(kSize), kNeverResumable));
    canceller.join();
    relay_.Release();
}

// Sparse files of more than 4 GiB: all but the end is on the server already.
constexpr std::uint64_t kFourGibibytes = 1ull << 32;
constexpr std::uint64_t kHuge = kFourGibibytes + 100'000;
constexpr std::uint64_t kThere = kFourGibibytes - 100'000;

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

std::string ReadAt(HANDLE file, std::uint64_t offset, std::size_t size) {
    std::string bytes(size, '\0');
    OVERLAPPED place = At(offset);
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file, bytes.data(), static_cast<DWORD>(size), &read, &place));
    bytes.resize(read);
    return bytes;
}

TEST_P(DavTransferTest, GoesOnBeyondFourGibibytes) {
    if (!IsApache()) return; // the other one reads a file as a whole for its version
    const auto source = MakeSparse(folder_ / L"huge", kHuge);
    const std::string rest = Content(kHuge - kThere);
    OVERLAPPED place = At(kThere);
    DWORD written = 0;
    ASSERT_TRUE(
        WriteFile(source.Get(), rest.data(), static_cast<DWORD>(rest.size()), &written, &place));
    ASSERT_EQ("done", Put("up", "")); // the server's own file
    const std::wstring stored = FilesOf(Server()) + L"\\up";
    MakeSparse(stored, kThere);
    DavTransfer transfer(client_, Url("up"), {source.Get(), kHuge}, [](std::uint64_t) {});
    EXPECT_EQ("done", Outcome(transfer.Run(true)));
    const auto there = client_.Look(Url("up"));
    ASSERT_EQ("done", Outcome(there));
    EXPECT_EQ(kHuge, std::get<DavItem>(there).size);
    const ObLib::UniqueKernelHandle result(CreateFileW(stored.c_str(), GENERIC_READ,
                                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                       OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(rest, ReadAt(result.Get(), kThere, rest.size()));
    EXPECT_EQ(std::string(1000, '\0'), ReadAt(result.Get(), kThere - 1000, 1000));
    EXPECT_EQ("PUT PROPFIND OPTIONS PUT PROPFIND PUT PROPFIND PROPFIND", relay_.Methods());
}

} // namespace
} // namespace providers
