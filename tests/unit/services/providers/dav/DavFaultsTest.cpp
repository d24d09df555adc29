#include <gtest/gtest.h>

#include <thread>

#include "tests/support/ImportPatch.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/dav/DavFixture.h"

namespace providers {
namespace {

class DavFaults : public DavAccount {};
INSTANTIATE_TEST_SUITE_P(Servers, DavFaults, testing::Values("apache"));

struct StatusRow {
    const char* reply;
    DavFault fault;
    int status;
};

constexpr StatusRow kStatuses[] = {
    {"400", DavFault::Other, 400},
    {"401", DavFault::WrongLogin, 401},
    {"401|WWW-Authenticate: Digest realm=\"x\"", DavFault::OtherLogin, 401},
    {"401|WWW-Authenticate: Bearer|WWW-Authenticate: BASIC realm=\"x\"", DavFault::WrongLogin, 401},
    {"401|WWW-Authenticate: Negotiate, Basic realm=\"x\"", DavFault::WrongLogin, 401},
    {"403", DavFault::Forbidden, 403},
    {"404", DavFault::NotFound, 404},
    {"405", DavFault::NotPossible, 405},
    {"409", DavFault::Conflict, 409},
    {"410", DavFault::NotFound, 410},
    {"412", DavFault::Taken, 412},
    {"413", DavFault::TooLarge, 413},
    {"423", DavFault::Locked, 423},
    {"429", DavFault::TooMany, 429},
    {"500", DavFault::ServerFailed, 500},
    {"501", DavFault::ServerFailed, 501},
    {"502", DavFault::ServerFailed, 502},
    {"503", DavFault::ServerFailed, 503},
    {"507", DavFault::NoSpace, 507},
    {"200", DavFault::NotDav, 200},
    {"207", DavFault::NotDav, 207},
    {"207|=<html/>", DavFault::NotDav, 207},
    {"429|Retry-After: 61", DavFault::TooMany, 429},
};

TEST_P(DavFaults, NamesEachStatus) {
    for (const StatusRow& row : kStatuses) {
        relay_.Begin("apache");
        relay_.On("PROPFIND", (std::string("status ") + row.reply).c_str());
        EXPECT_EQ(Outcome(row.fault, row.status), Outcome(client_.Look(root_))) << row.reply;
        EXPECT_EQ("PROPFIND", relay_.Methods()) << row.reply << " isn't asked for again";
    }
}

TEST_P(DavFaults, WaitsAsTheServerAsks) {
    relay_.On("PROPFIND", "status 429|Retry-After: 0");
    relay_.On("PROPFIND", "status 503|Retry-After: Sun, 06 Nov 1994 08:49:37 GMT|Date: Sun, 06 Nov "
                          "1994 08:50:37 GMT");
    EXPECT_EQ("done", Outcome(client_.Look(root_)));
    EXPECT_EQ("PROPFIND PROPFIND PROPFIND", relay_.Methods());
}

TEST_P(DavFaults, WaitsNoLongerThanItsPatience) {
    relay_.On("PROPFIND", "status 429|Retry-After: 0", 0, 100);
    const auto result = client_.Look(root_);
    ASSERT_EQ(Outcome(DavFault::TooMany, 429), Outcome(result));
    EXPECT_EQ("PROPFIND PROPFIND PROPFIND PROPFIND", relay_.Methods());
    // A date counts from the server's clock, however wrong that is.
    relay_.Begin("apache");
    relay_.On("PROPFIND", "status 429|Retry-After: Sun, 06 Nov 1994 08:59:37 GMT|Date: Sun, 06 Nov "
                          "1994 08:49:37 GMT");
    EXPECT_EQ(600u, std::get<DavError>(client_.Look(root_)).retryAfter);
}

TEST_P(DavFaults, EndsAWaitThatIsCancelled) {
    relay_.On("PROPFIND", "status 429|Retry-After: 50");
    std::thread canceller([&] {
        EXPECT_TRUE(obtest::WaitUntil([&] { return relay_.Methods() == "PROPFIND"; }));
        SetEvent(cancelled_.Get());
    });
    EXPECT_EQ(Outcome(HttpFault::Cancelled), Outcome(client_.Look(root_)));
    canceller.join();
}

TEST_P(DavFaults, AsksAgainAfterABreakWhenNothingIsChangedByIt) {
    relay_.On("PROPFIND", "refuse", 0, 3);
    EXPECT_EQ("done", Outcome(client_.Look(root_)));
    EXPECT_EQ("PROPFIND PROPFIND PROPFIND PROPFIND", relay_.Methods());
    relay_.On("PROPFIND", "cutreply 100", 0, 4);
    EXPECT_EQ(Outcome(HttpFault::BrokenOff), Outcome(client_.Look(root_)));
}

decltype(&WaitForSingleObject) realWait = nullptr;
HANDLE watched = nullptr;
std::vector<DWORD> pauses; // asked for with `watched`; they take no time

DWORD WINAPI RecordPause(HANDLE object, DWORD milliseconds) {
    if (object != watched || milliseconds == 0) return realWait(object, milliseconds);
    pauses.push_back(milliseconds);
    return WAIT_TIMEOUT;
}

// 15 seconds in all: the user waits for nothing else by then.
TEST_P(DavFaults, LooksForALateStepAfterWaitsThatGrow) {
    const obtest::ImportPatch<decltype(WaitForSingleObject)> patch(
        "kernel32.dll", "WaitForSingleObject", &RecordPause);
    ASSERT_TRUE(patch.Ok());
    realWait = patch.Real();
    watched = cancelled_.Get();
    pauses.clear();
    ASSERT_EQ("done", Put("from", "12345"));
    const DavClient patient(session_, login_, cancelled_.Get());
    relay_.On("MOVE", "status 504");
    EXPECT_EQ(Outcome(DavFault::ServerFailed, 504),
              Outcome(patient.Move(Url("from"), Url("to"), 5)));
    EXPECT_EQ((std::vector<DWORD>{1'000, 2'000, 4'000, 8'000}), pauses);
    // What is looked at reports errors of its own meanwhile.
    pauses.clear();
    relay_.On("MOVE", "later 4 502");
    relay_.On("PROPFIND", "status 502", 0, 2);
    EXPECT_EQ("done", Outcome(patient.Move(Url("from"), Url("to"), 5)));
    EXPECT_EQ((std::vector<DWORD>{1'000, 2'000, 4'000}), pauses);
    // What only the user can mend isn't waited for.
    pauses.clear();
    relay_.On("MOVE", "status 504");
    relay_.On("PROPFIND", "status 401");
    EXPECT_EQ(Outcome(DavFault::WrongLogin, 401), Outcome(patient.Move(Url("to"), Url("from"), 5)));
    EXPECT_EQ((std::vector<DWORD>{}), pauses);
    EXPECT_EQ("done", Outcome(client_.Discard(Url("to"))));
}

} // namespace
} // namespace providers
