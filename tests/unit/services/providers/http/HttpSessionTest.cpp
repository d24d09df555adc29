#include "services/providers/http/HttpSession.h"

#include <gtest/gtest.h>
#include <winhttp.h>

#include <thread>

#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/providers/http/HttpFixture.h"

namespace providers {
namespace {

class HttpSessionTest : public testing::Test {
protected:
    HttpResult Send(const HttpRequest& request, HANDLE cancelled = nullptr) const {
        return session_.Send(request, cancelled);
    }
    // Whether the only request so far has ended before its reply did. Lets go of the reply.
    bool EndedWhileItDripped() const {
        relay_.Release();
        relay_.WaitUntilHeld(0);
        const auto requests = relay_.Requests();
        return requests.size() == 1 && requests[0].ends_with(" -");
    }

    obtest::Relay relay_{"apache"};
    HttpSession session_;
    HttpUrl url_ = ServerUrl(L"RELAY_URL");
    HttpLogin login_ = LoginFor(url_);
};

TEST_F(HttpSessionTest, StoresAndReadsAFile) {
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "a"), &login_);
    put.body = std::string("some bytes");
    EXPECT_EQ(201, Outcome(Send(put)));
    const HttpResult got = Send(Request("GET", ServerUrl(L"RELAY_URL", "a"), &login_));
    ASSERT_EQ(200, Outcome(got));
    EXPECT_EQ("some bytes", std::get<HttpReply>(got).body);
    EXPECT_EQ("10", std::get<HttpReply>(got).Header("CONTENT-length"));
    EXPECT_EQ("", std::get<HttpReply>(got).Header("None"));
    EXPECT_EQ(404, Outcome(Send(Request("GET", ServerUrl(L"RELAY_URL", "none"), &login_))));
}

TEST_F(HttpSessionTest, SendsAPartOfAFileAndReportsHowFarItIs) {
    const obtest::TestFolder folder;
    std::string content(1'000'003, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 + i / 256);
    const ObLib::UniqueKernelHandle file(CreateFileW(
        folder.File(L"f", content).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "part"), &login_);
    put.body = HttpFilePart{file.Get(), 3, content.size() - 3};
    std::vector<std::uint64_t> sent;
    put.progress = [&](std::uint64_t bytes) { sent.push_back(bytes); };
    ASSERT_EQ(201, Outcome(Send(put)));
    EXPECT_EQ(content.substr(3),
              obtest::ReadFileContent(obtest::ServerValue(L"APACHE_FILES") + L"\\part"));
    ASSERT_GT(sent.size(), 1u);
    EXPECT_TRUE(std::is_sorted(sent.begin(), sent.end()));
    EXPECT_EQ(1'000'000u, sent.back());
}

TEST_F(HttpSessionTest, SendsAnEmptyBodyWithItsLength) {
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "empty"), &login_);
    put.body = HttpFilePart{nullptr, 0, 0};
    EXPECT_EQ(201, Outcome(Send(put)));
    EXPECT_EQ("", obtest::ReadFileContent(obtest::ServerValue(L"APACHE_FILES") + L"\\empty"));
}

TEST_F(HttpSessionTest, LogsInAtItsOwnServerOnly) {
    EXPECT_EQ(401, Outcome(Send(Request("GET", url_, nullptr))));
    EXPECT_EQ(0, relay_.Logins());
    HttpLogin other = LoginFor(url_);
    other.origin.port ^= 1;
    EXPECT_EQ(401, Outcome(Send(Request("GET", url_, &other))));
    EXPECT_EQ(0, relay_.Logins());
    HttpLogin wrong = login_;
    wrong.password = ObLib::Secret("wrong");
    EXPECT_EQ(401, Outcome(Send(Request("GET", url_, &wrong))));
    EXPECT_EQ(1, relay_.Logins()) << "tried once, not again";
    EXPECT_EQ(404, Outcome(Send(Request("GET", ServerUrl(L"RELAY_URL", "none"), &login_))));
}

TEST_F(HttpSessionTest, EndsAtOnceWhenItIsCancelled) {
    const ObLib::UniqueKernelHandle cancelled(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    relay_.On("GET", "hold");
    std::thread canceller([&] {
        relay_.WaitUntilHeld(1);
        SetEvent(cancelled.Get());
    });
    EXPECT_EQ(Outcome(HttpFault::Cancelled),
              Outcome(Send(Request("GET", url_, &login_), cancelled.Get())));
    canceller.join();
    EXPECT_EQ(Outcome(HttpFault::Cancelled),
              Outcome(Send(Request("GET", url_, &login_), cancelled.Get())))
        << "nothing begins once it is cancelled";
    relay_.Release();
    EXPECT_EQ("GET", relay_.Methods());
}

TEST_F(HttpSessionTest, EndsAtOnceWhenItIsCancelledInTheBody) {
    const ObLib::UniqueKernelHandle cancelled(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const obtest::TestFolder folder;
    const std::string content(3'000'000, 'x');
    const ObLib::UniqueKernelHandle file(CreateFileW(
        folder.File(L"f", content).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "cancelled"), &login_);
    put.body = HttpFilePart{file.Get(), 0, content.size()};
    put.progress = [&](std::uint64_t) { SetEvent(cancelled.Get()); };
    EXPECT_EQ(Outcome(HttpFault::Cancelled), Outcome(Send(put, cancelled.Get())));
}

TEST_F(HttpSessionTest, EndsAStepThatTakesTooLong) {
    HttpTimes times;
    times.reply = 50;
    relay_.On("PUT", "holdreply");
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "slow"), &login_);
    put.body = std::string("x");
    EXPECT_EQ(Outcome(HttpFault::TimedOut), Outcome(HttpSession(times).Send(put, nullptr)));
    // Without a body this system's client may count the wait for the reply to the step before.
    times.connect = 50;
    relay_.On("GET", "hold");
    EXPECT_EQ(Outcome(HttpFault::TimedOut),
              Outcome(HttpSession(times).Send(Request("GET", url_, &login_), nullptr)));
    relay_.Release();
}

// Bytes that come one by one for longer than a test may take, unless the relay is released.
constexpr char kDrippingBody[] = "drip 2000";
constexpr char kDrippingHead[] = "driphead 2000";
constexpr DWORD kSoon = 200; // milliseconds
constexpr DWORD kLate = 60'000;

// Each byte comes in time; all of them together don't. In this system's client a
// read that asks for more than what has come blocks its caller until the buffer is full, whatever
// the limit.
TEST_F(HttpSessionTest, EndsABodyThatDripsForTooLong) {
    HttpRequest get = Request("GET", url_, &login_);
    get.times = HttpTimes{kLate, kLate, kLate, kSoon};
    relay_.On("GET", kDrippingBody);
    EXPECT_EQ(Outcome(HttpFault::TimedOut), Outcome(Send(get)));
    EXPECT_TRUE(EndedWhileItDripped());
    EXPECT_EQ(404, Outcome(Send(Request("GET", ServerUrl(L"RELAY_URL", "none"), &login_))))
        << "the session serves on";
}

decltype(&WinHttpReadData) realReadData = nullptr;

// Returns at once, as the client is documented to.
BOOL WINAPI ReadOnAnotherThread(HINTERNET request, void* buffer, DWORD size, DWORD* read) {
    std::thread([=] { realReadData(request, buffer, size, read); }).detach();
    return TRUE;
}

TEST_F(HttpSessionTest, EndsABodyWhoseChunksDripForTooLong) {
    const obtest::ImportPatch<decltype(WinHttpReadData)> patch("winhttp.dll", "WinHttpReadData",
                                                               &ReadOnAnotherThread);
    ASSERT_TRUE(patch.Ok());
    realReadData = patch.Real();
    std::puts("HttpSessionTest: after each chunk this system's client blocks its caller until the "
              "next one begins; the test reads on another thread");
    HttpRequest get = Request("GET", url_, &login_);
    get.times = HttpTimes{kLate, kLate, kLate, kSoon};
    relay_.On("GET", "dripchunks 2000");
    EXPECT_EQ(Outcome(HttpFault::TimedOut), Outcome(Send(get)));
    EXPECT_TRUE(EndedWhileItDripped());
}

// The request has a body: without one this system's client waits for the reply in the step before.
TEST_F(HttpSessionTest, EndsAHeadThatDripsForTooLong) {
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "head"), &login_);
    put.body = std::string("x");
    put.times = HttpTimes{kLate, kLate, kSoon, kLate};
    relay_.On("PUT", kDrippingHead);
    EXPECT_EQ(Outcome(HttpFault::TimedOut), Outcome(Send(put)));
    EXPECT_TRUE(EndedWhileItDripped());
}

TEST_F(HttpSessionTest, EndsAtOnceWhenItIsCancelledInAReplyThatDrips) {
    const ObLib::UniqueKernelHandle cancelled(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    relay_.On("GET", kDrippingBody);
    std::thread canceller([&] {
        relay_.WaitUntilHeld(1);
        SetEvent(cancelled.Get());
    });
    EXPECT_EQ(Outcome(HttpFault::Cancelled),
              Outcome(Send(Request("GET", url_, &login_), cancelled.Get())));
    canceller.join();
    EXPECT_TRUE(EndedWhileItDripped());
}

TEST_F(HttpSessionTest, ReportsConnectionsThatEndEarly) {
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "early"), &login_);
    put.body = std::string(100'000, 'x');
    relay_.On("PUT", "refuse");
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Outcome(Send(put))) << "before it is read";
    relay_.On("PUT", "cutbody 5000");
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Outcome(Send(put))) << "in the body";
    relay_.On("PUT", "swallow");
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Outcome(Send(put))) << "after the body";
    relay_.On("GET", "cutreply 10");
    EXPECT_EQ(Outcome(HttpFault::BrokenOff),
              Outcome(Send(Request("GET", ServerUrl(L"RELAY_URL", "early"), &login_))))
        << "in the reply";
    EXPECT_EQ("PUT PUT PUT GET", relay_.Methods()) << "the client repeats nothing itself";
}

TEST_F(HttpSessionTest, ReadsAReplyThatComesBeforeTheBodyHasBeenRead) {
    relay_.On("PUT", "early 413");
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "early"), &login_);
    put.body = std::string(20'000'000, 'x');
    EXPECT_EQ(413, Outcome(Send(put)));
}

// The connection ends while most of the body is still to be sent.
TEST_F(HttpSessionTest, ReadsTheReplyOfAServerThatRefusesTheBody) {
    const obtest::TestFolder folder;
    const std::string content(20'000'000, 'x');
    const ObLib::UniqueKernelHandle file(CreateFileW(
        folder.File(L"f", content).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "refused"), &login_);
    put.body = HttpFilePart{file.Get(), 0, content.size()};
    std::uint64_t sent = 0;
    put.progress = [&](std::uint64_t bytes) { sent = bytes; };
    for (const auto& [action, status] :
         {std::pair{"deny 413", 413}, std::pair{"deny 401", 401}, std::pair{"deny 507|=no", 507}}) {
        relay_.On("PUT", action);
        EXPECT_EQ(status, Outcome(Send(put))) << action;
        EXPECT_LT(sent, content.size()) << "the body wasn't sent as a whole";
    }
    // What isn't a refusal is no reply to a body that never came.
    relay_.On("PUT", "deny 201");
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Outcome(Send(put)));
}

// Its status isn't read then: the client may still be sending the block.
TEST_F(HttpSessionTest, EndsInATimeoutWhereARefusedBodyIsReadNoFurther) {
    const obtest::TestFolder folder;
    const std::string content(50'000'000, 'x');
    const ObLib::UniqueKernelHandle file(CreateFileW(
        folder.File(L"f", content).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "refused"), &login_);
    put.body = HttpFilePart{file.Get(), 0, content.size()};
    put.times = HttpTimes{2'000, 1'000, 2'000, 2'000};
    relay_.On("PUT", "stall 413");
    EXPECT_EQ(Outcome(HttpFault::TimedOut), Outcome(Send(put)));
    relay_.Release();
}

TEST_F(HttpSessionTest, TakesNoLongerReplyThanItsCallerAllows) {
    relay_.On("GET", "status 200|=0123456789", 0, 2);
    HttpRequest get = Request("GET", url_, nullptr);
    get.longestReply = 9;
    EXPECT_EQ(Outcome(HttpFault::ReplyTooLong), Outcome(Send(get)));
    get.longestReply = 10;
    EXPECT_EQ(200, Outcome(Send(get)));
}

TEST_F(HttpSessionTest, SendsNothingOfAFileThatCannotBeRead) {
    const obtest::TestFolder folder;
    const ObLib::UniqueKernelHandle file(CreateFileW(
        folder.File(L"f", "short").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    HttpRequest put = Request("PUT", ServerUrl(L"RELAY_URL", "short"), &login_);
    put.body = HttpFilePart{file.Get(), 0, 6};
    EXPECT_EQ(Outcome(HttpFault::FileUnreadable), Outcome(Send(put)));
}

TEST_F(HttpSessionTest, ServesSeveralThreadsAtATime) {
    relay_.On("GET", "hold", 0, 3);
    std::array<int, 3> outcomes{};
    std::vector<std::thread> threads;
    for (int& outcome : outcomes)
        threads.emplace_back([&] {
            outcome = Outcome(Send(Request("GET", ServerUrl(L"RELAY_URL", "no"), &login_)));
        });
    relay_.WaitUntilHeld(3);
    relay_.Release();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ((std::array{404, 404, 404}), outcomes);
}

} // namespace
} // namespace providers
