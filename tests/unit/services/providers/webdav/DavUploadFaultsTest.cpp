#include <gtest/gtest.h>

#include <thread>

#include "contracts/ProviderManager.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/webdav/DavUploadFixture.h"

namespace providers {
namespace {

// A server that misbehaves in one step: what the user reads, and that the server has the file once
// or not at all.
struct FaultRow {
    const char* method;
    const char* action;
    int times;
    UploadEnd end;
    const wchar_t* sentence; // a part of it; null: none
};

constexpr int kAlways = 1000;
constexpr FaultRow kRows[] = {
    // Before the first byte.
    {"PROPFIND", "status 401", 1, UploadEnd::Failed,
     L"doesn't accept the user name or the password"},
    {"PROPFIND", "status 401|WWW-Authenticate: Digest realm=\"x\"", 1, UploadEnd::Failed,
     L"takes no user name and password in the way"},
    {"PROPFIND", "status 403", 1, UploadEnd::Failed, L"doesn't allow you"},
    {"PROPFIND", "status 500", 1, UploadEnd::Failed, L"reported the error 500"},
    {"PROPFIND", "status 200|=<html/>", 1, UploadEnd::Failed, L"no WebDAV folders"},
    {"PROPFIND", "status 302|Location: http://127.0.0.1:1/", 1, UploadEnd::Failed,
     L"refers to another address"},
    {"PROPFIND", "status 429|Retry-After: 3600", 1, UploadEnd::Failed, L"in 61 minutes"},
    {"PROPFIND", "status 429|Retry-After: 0", 1, UploadEnd::Done, nullptr},
    {"PROPFIND", "refuse", 2, UploadEnd::Done, nullptr},
    {"PROPFIND", "cutreply 40", 2, UploadEnd::Done, nullptr},
    {"PROPFIND", "refuse", kAlways, UploadEnd::Failed, L"broke off"},
    {"MKCOL", "status 403", 1, UploadEnd::Failed, L"doesn't allow you"},
    {"MKCOL", "status 409", 1, UploadEnd::Failed, L"no longer on the server"},
    {"MKCOL", "status 507", 1, UploadEnd::Failed, L"too little free space"},
    {"MKCOL", "swallow", 1, UploadEnd::Done, nullptr},
    {"MKCOL", "refuse", 1, UploadEnd::Done, nullptr},
    {"MKCOL", "instead 504", 1, UploadEnd::Done, nullptr},
    {"MKCOL", "instead 408", 1, UploadEnd::Done, nullptr},
    {"MKCOL", "instead 207|=<x/>", 1, UploadEnd::Done, nullptr},
    {"MKCOL", "status 207|=<x/>", 1, UploadEnd::Failed, L"reported the error 207"},
    {"MKCOL", "status 504", 1, UploadEnd::Failed, L"reported the error 504"},
    // In and after the body.
    {"PUT", "status 403", 1, UploadEnd::Failed, L"doesn't allow you"},
    {"PUT", "status 413", 1, UploadEnd::Failed, L"too large for the server"},
    {"PUT", "early 413", 1, UploadEnd::Failed, L"too large for the server"},
    {"PUT", "status 423", 1, UploadEnd::Failed, L"locked"},
    {"PUT", "status 507", 1, UploadEnd::Failed, L"too little free space"},
    // The space ends in the middle.
    {"PUT", "early 507", 1, UploadEnd::Failed, L"too little free space"},
    {"PUT", "deny 507", 1, UploadEnd::Failed, L"too little free space"},
    {"PUT", "status 500", 1, UploadEnd::Failed, L"reported the error 500"},
    {"PUT", "status 503|Retry-After: 0", 1, UploadEnd::Done, nullptr},
    {"PUT", "refuse", 1, UploadEnd::Done, nullptr},
    {"PUT", "refuse", kAlways, UploadEnd::Failed, L"broke off"},
    {"PUT", "cutbody 300000", 1, UploadEnd::Done, nullptr},
    {"PUT", "cutbody 300000", kAlways, UploadEnd::Failed, L"broke off"},
    {"PUT", "keepbody 300000", 1, UploadEnd::Done, nullptr},
    {"PUT", "swallow", 1, UploadEnd::Done, nullptr},
    {"PUT", "sink", 1, UploadEnd::Failed, L"hasn't stored the whole file"},
    {"PUT", "instead 504", 1, UploadEnd::Done, nullptr},
    {"PUT", "instead 502", 1, UploadEnd::Done, nullptr},
    {"PUT", "instead 408", 1, UploadEnd::Done, nullptr},
    {"PUT", "status 504", 1, UploadEnd::Failed, L"reported the error 504"},
    {"PUT", "later 3 502", 1, UploadEnd::Done, nullptr},
    {"PUT", "later 5 504", 1, UploadEnd::Done, nullptr},
    {"PUT", "later 100 504", 1, UploadEnd::Failed, L"reported the error 504"},
    {"PUT", "status 404", 1, UploadEnd::Failed, L"folder"},
    {"PUT", "status 409", 1, UploadEnd::Failed, L"no longer on the server"},
    {"PUT", "status 429|Retry-After: 3600", 1, UploadEnd::Failed, L"in 61 minutes"},
    // At the last step.
    {"MOVE", "instead 500", 1, UploadEnd::Done, nullptr},
    {"MOVE", "instead 502", kAlways, UploadEnd::Done, nullptr},
    {"MOVE", "instead 504", 1, UploadEnd::Done, nullptr},
    {"MOVE", "instead 207|=<x/>", 1, UploadEnd::Done, nullptr},
    {"MOVE", "status 207|=<x/>", 1, UploadEnd::Failed, L"reported the error 207"},
    {"MOVE", "instead 408", kAlways, UploadEnd::Done, nullptr},
    {"MOVE", "status 408", 1, UploadEnd::Failed, L"reported the error 408"},
    {"MOVE", "status 504", 1, UploadEnd::Failed, L"reported the error 504"},
    {"MOVE", "later 3 502", 1, UploadEnd::Done, nullptr},
    {"MOVE", "later 5 504", 1, UploadEnd::Done, nullptr},
    {"MOVE", "later 100 502", 1, UploadEnd::Failed, L"reported the error 502"},
    {"MOVE", "status 404", 1, UploadEnd::Failed, L"folder"},
    {"MOVE", "status 409", 1, UploadEnd::Failed, L"no longer on the server"},
    {"MOVE", "status 429|Retry-After: 3600", 1, UploadEnd::Failed, L"in 61 minutes"},
    {"MOVE", "status 507", 1, UploadEnd::Failed, L"too little free space"},
    {"MOVE", "swallow", kAlways, UploadEnd::Done, nullptr},
    {"MOVE", "status 403", 1, UploadEnd::Failed, L"doesn't allow you"},
    {"MOVE", "status 423", 1, UploadEnd::Failed, L"locked"},
    {"MOVE", "status 500", 1, UploadEnd::Failed, L"reported the error 500"},
    {"MOVE", "status 307|Location: /dav/x", 1, UploadEnd::Failed, L"refers to another address"},
    {"MOVE", "refuse", 1, UploadEnd::Done, nullptr},
    {"MOVE", "refuse", kAlways, UploadEnd::Failed, L"broke off"},
    {"MOVE", "swallow", 1, UploadEnd::Done, nullptr},
    {"MOVE", "twice", 1, UploadEnd::Done, nullptr},
};

class DavUploadFaults : public DavUploadAccount {};
INSTANTIATE_TEST_SUITE_P(Servers, DavUploadFaults, testing::Values("apache", "sabre"));

TEST_P(DavUploadFaults, EndAsTheTableLists) {
    for (const FaultRow& row : kRows) {
        const std::string what = std::string(row.method) + " " + row.action;
        relay_.Begin(GetParam());
        relay_.On(row.method, row.action, 0, row.times);
        const UploadResult result = Upload(L"a.zip", L"c");
        EXPECT_EQ(row.end, result.end) << what << " " << testing::PrintToString(relay_.Requests());
        const bool isDone = row.end == UploadEnd::Done;
        EXPECT_EQ((isDone ? std::vector<std::wstring>{L"c\\a.zip"} : std::vector<std::wstring>{}),
                  Files())
            << what;
        if (isDone) {
            EXPECT_EQ(content_, Stored(L"c\\a.zip")) << what;
        }
        const bool isSentence = row.sentence
                                    ? result.sentence.find(row.sentence) != std::wstring::npos
                                    : result.sentence.empty();
        EXPECT_TRUE(isSentence) << what << ": " << ToUtf8(result.sentence);
        relay_.Begin(GetParam());
        HttpUrl folder = Url("c");
        folder.path += '/';
        EXPECT_EQ("done", Outcome(client_.Discard(folder))) << what;
    }
}

// From one of the requests on the server has gone for good: what it keeps is noted, and removed
// once it is there again.
TEST_P(DavUploadFaults, LeaveNothingButANotedPartWhenTheServerGoesAtAnyStep) {
    obtest::ClearProductRegistry();
    const PartNotes notes(AccountBook(HKEY_CURRENT_USER, obcontract::kProviderManagerKey));
    for (int passed = 0;; ++passed) {
        const std::wstring folder = L"gone " + std::to_wstring(passed);
        relay_.Begin(GetParam());
        relay_.On("*", "refuse", passed, kAlways);
        DavUpload upload(session_, DavPatience{1, 0, 1, 0}, DavUpload::Notes{notes, L"account"});
        const UploadResult result =
            upload.Run({root_, login_}, {source_, L"a.zip", folder}, progress_, ask_);
        relay_.Begin(GetParam());
        const auto noted = notes.OldAt(UINT64_MAX);
        if (result.end == UploadEnd::Done) {
            EXPECT_EQ(content_, Stored(folder + L"\\a.zip")) << passed;
            EXPECT_TRUE(noted.empty()) << passed;
            EXPECT_GE(passed, 6) << "folder and name are looked up and made before the move";
            break;
        }
        EXPECT_EQ(UploadEnd::Failed, result.end) << passed;
        EXPECT_NE(std::wstring::npos, result.sentence.find(L"broke off"))
            << passed << ": " << ToUtf8(result.sentence);
        for (const NotedPart& part : noted) {
            EXPECT_EQ(DeletionEnd::Gone, RemoveDavPart(client_, root_, part.path)) << passed;
            notes.Remove(part.id);
        }
        EXPECT_TRUE(Files().empty()) << passed << " " << testing::PrintToString(Files());
        ASSERT_LT(passed, 30);
    }
    obtest::ClearProductRegistry();
}

// A server that is silent at one step, for longer than the client waits.
TEST_P(DavUploadFaults, EndWhenTheServerIsSilentAtAStep) {
    const HttpSession impatient(HttpTimes{2'000, 2'000, 500, 2'000});
    // The next Begin lets go on what was held: a body comes last, as its server then stores it
    // late.
    for (const char* const method : {"PROPFIND", "MKCOL", "MOVE", "PUT"}) {
        relay_.Begin(GetParam());
        relay_.On(method, "hold", 0, kAlways);
        DavUpload upload(impatient, DavPatience{1, 0, 1, 0});
        const UploadResult result =
            upload.Run({root_, login_}, {source_, L"a.zip", L"silent"}, progress_, ask_);
        EXPECT_EQ(UploadEnd::Failed, result.end) << method;
        EXPECT_NE(std::wstring::npos, result.sentence.find(L"doesn't respond"))
            << method << ": " << ToUtf8(result.sentence);
        EXPECT_TRUE(Files().empty()) << method;
    }
}

// A reply that comes late, after the step was done: the step is looked up, and nothing is doubled.
TEST_P(DavUploadFaults, GoOnAfterAReplyThatComesTooLate) {
    const HttpSession impatient(HttpTimes{2'000, 2'000, 500, 2'000});
    for (const char* const method : {"MKCOL", "PUT", "MOVE"}) {
        relay_.Begin(GetParam());
        relay_.On(method, "holdreply", 0, 1);
        DavUpload upload(impatient, DavPatience{1, 0, 1, 0});
        const std::wstring name = std::wstring(L"late ") + static_cast<wchar_t>(method[1]);
        const UploadResult result =
            upload.Run({root_, login_}, {source_, name, L"late"}, progress_, ask_);
        EXPECT_EQ(UploadEnd::Done, result.end) << method << " " << ToUtf8(result.sentence);
        EXPECT_EQ(content_, Stored(L"late\\" + name)) << method;
    }
    EXPECT_EQ(3u, Files().size());
}

// The server between gives up at once, and the server itself is asked for a while.
TEST_P(DavUploadFaults, AskAFewTimesWhetherAServerHasActedLate) {
    for (const char* const method : {"PUT", "MOVE"}) {
        relay_.Begin(GetParam());
        relay_.On(method, "status 504");
        EXPECT_EQ(UploadEnd::Failed, Upload(L"a.zip", L"c").end);
        const std::string methods = relay_.Methods();
        const std::string looks =
            method + std::string(" PROPFIND PROPFIND PROPFIND PROPFIND PROPFIND");
        const std::size_t at = methods.find(looks);
        ASSERT_NE(std::string::npos, at) << methods;
        EXPECT_EQ(1, Count(method)) << "nothing is done twice";
    }
}

TEST_P(DavUploadFaults, EndAtOnceWhenTheWaitForAServerIsCancelled) {
    constexpr DavPatience kLongWaits{3, 600'000, 3, 60'000};
    for (const char* const method : {"PUT", "MOVE"}) {
        RecordedProgress progress;
        relay_.Begin(GetParam());
        relay_.On(method, "status 504");
        std::thread canceller([&] {
            EXPECT_TRUE(obtest::WaitUntil(
                [&] { return relay_.Methods().ends_with(method + std::string(" PROPFIND")); }));
            progress.Cancel();
        });
        DavUpload upload(session_, kLongWaits);
        EXPECT_EQ(UploadEnd::Cancelled,
                  upload.Run({root_, login_}, {source_, L"a.zip", L"c"}, progress, ask_).end);
        canceller.join();
        EXPECT_EQ(std::vector<std::wstring>{}, Files()) << method;
    }
}

// Whatever clears up after a cancel has a limit of its own: a server that replies byte by byte,
// each in time, doesn't keep the user waiting.
TEST_P(DavUploadFaults, EndACancelWhileTheServerDrips) {
    struct Row {
        const char* method; // of the step that is cancelled, done on the server
        const char* clears; // of the request that drips after it
    };
    DavPatience patience = kNoPauses;
    patience.clearing = 200;
    for (const Row& row : {Row{"PUT", "DELETE"}, Row{"MOVE", "PROPFIND"}}) {
        RecordedProgress progress;
        relay_.Begin(GetParam());
        relay_.On(row.method, "holdreply");
        std::thread canceller([&] {
            relay_.WaitUntilHeld(1);
            relay_.On(row.clears, "drip 2000");
            progress.Cancel();
        });
        DavUpload upload(session_, patience);
        const UploadResult result =
            upload.Run({root_, login_}, {source_, L"a.zip", L"drip"}, progress, ask_);
        canceller.join();
        EXPECT_EQ(UploadEnd::Cancelled, result.end) << row.method;
        relay_.Release();
        relay_.WaitUntilHeld(0);
        const auto requests = relay_.Requests();
        EXPECT_TRUE(std::any_of(requests.begin(), requests.end(), [&](const std::string& line) {
            return line.starts_with(row.clears) && line.ends_with(" -");
        })) << testing::PrintToString(requests);
    }
}

TEST_P(DavUploadFaults, AskNothingMoreOnceTheTimeForClearingUpIsOver) {
    DavPatience patience = kNoPauses;
    patience.clearing = 0;
    relay_.On("PUT", "status 403");
    DavUpload upload(session_, patience);
    EXPECT_EQ(UploadEnd::Failed,
              upload.Run({root_, login_}, {source_, L"a.zip", L"c"}, progress_, ask_).end);
    EXPECT_EQ(1, Count("PUT"));
    EXPECT_EQ(0, Count("DELETE"));
}

// A cancel isn't kept waiting by a server that doesn't remove what it has.
TEST_P(DavUploadFaults, EndACancelWhileTheServerIsSilentAboutTheRest) {
    obtest::ClearProductRegistry();
    const PartNotes notes(AccountBook(HKEY_CURRENT_USER, obcontract::kProviderManagerKey));
    DavPatience patience = kNoPauses;
    patience.clearing = 300;
    DavUpload upload(session_, patience, DavUpload::Notes{notes, L"account"});
    relay_.On("PUT", "holdreply");
    relay_.On("DELETE", "hold");
    std::thread canceller([&] {
        relay_.WaitUntilHeld(1);
        progress_.Cancel();
    });
    const UploadResult result =
        upload.Run({root_, login_}, {source_, L"a.zip", L"c"}, progress_, ask_);
    canceller.join();
    EXPECT_EQ(UploadEnd::Cancelled, result.end);
    const auto noted = notes.OldAt(UINT64_MAX);
    ASSERT_EQ(1u, noted.size());
    relay_.Release();
    EXPECT_EQ(DeletionEnd::Gone, RemoveDavPart(client_, root_, noted[0].path));
    EXPECT_TRUE(Files().empty());
    obtest::ClearProductRegistry();
}

} // namespace
} // namespace providers
