#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/services/providers/dav/ShareFixture.h"

namespace providers {
namespace {

// A server that misbehaves in one step of a link, what comes of it, and how many shares there are
// then. "none": no interface is found.
struct FaultRow {
    const char* method;
    int skip; // requests of this method before; the first two GETs are the rules and the list
    const char* action;
    std::string outcome;
    std::size_t shares;
    int times = 1;
};

constexpr char kRefusal[] = "<ocs><meta><status>failure</status><statuscode>403</statuscode>"
                            "<message>Not for you</message></meta><data/></ocs>";

const FaultRow kRows[] = {
    // The rules.
    {"PROPFIND", 0, "status 401", Outcome(DavFault::WrongLogin, 401), 0},
    {"PROPFIND", 0, "status 500", "done", 1}, // only the login is looked at
    {"GET", 0, "status 401", "none", 0}, // this place isn't looked at; the other place has none
    {"GET", 0, "status 429|Retry-After: 3600", Outcome(DavFault::TooMany, 429), 0},
    {"GET", 0, "status 429|Retry-After: 0", "done", 1},
    {"GET", 0, "status 500", Outcome(DavFault::ServerFailed, 500), 0},
    {"GET", 0, "refuse", "done", 1},
    {"GET", 0, "cutreply 40", "done", 1},
    {"GET", 0, "refuse", Outcome(HttpFault::BrokenOff), 0, 1000},
    // What is shared already.
    {"GET", 1, "status 401", Outcome(DavFault::WrongLogin, 401), 0},
    {"GET", 1, "status 404", Outcome(DavFault::NotFound, 404), 0},
    {"GET", 1, "status 500", Outcome(DavFault::ServerFailed, 500), 0},
    {"GET", 1, "status 200|=<html/>", Outcome(ShareFault::Damaged), 0},
    {"GET", 1, "cutreply 40", "done", 1},
    // The link.
    {"POST", 0, "status 400", Outcome(DavFault::Other, 400), 0},
    {"POST", 0, "status 401", Outcome(DavFault::WrongLogin, 401), 0},
    {"POST", 0, "status 403", Outcome(DavFault::Forbidden, 403), 0},
    {"POST", 0, "status 404", Outcome(DavFault::NotFound, 404), 0},
    {"POST", 0, "refusal", Outcome(ShareFault::Refused), 0},
    {"POST", 0, "status 429|Retry-After: 3600", Outcome(DavFault::TooMany, 429), 0},
    {"POST", 0, "status 429|Retry-After: 0", "done", 1},
    {"POST", 0, "status 500", Outcome(DavFault::ServerFailed, 500), 0},
    {"POST", 0, "status 302|Location: http://127.0.0.1:1/", Outcome(HttpFault::Redirected), 0},
    {"POST", 0, "status 200|=<html/>", Outcome(ShareFault::Damaged), 0},
    {"POST", 0, "refuse", "done", 1},
    {"POST", 0, "refuse", Outcome(HttpFault::BrokenOff), 0, 1000},
    {"POST", 0, "cutbody 10", "done", 1},
    {"POST", 0, "swallow", "done", 1},
    {"POST", 0, "cutreply 5", "done", 1},
    {"POST", 0, "cutreply 300", "done", 1},
};

class ShareFaults : public ShareAccount {
protected:
    std::string FindAndMake(const ShareWish& wish) const {
        const auto found = ShareApi::Find(client_, root_);
        if (std::holds_alternative<ShareError>(found)) return Outcome(found);
        const auto& api = std::get<0>(found);
        return api ? Outcome(api->Make(client_, wish)) : "none";
    }
};

TEST_F(ShareFaults, EndAsTheTableLists) {
    const ObLib::Secret password("a password");
    for (const bool hasLabels : {true, false}) {
        for (const FaultRow& row : kRows) {
            server_.Begin();
            server_.Set("labels", hasLabels ? "1" : "0");
            relay_.Begin("ocs");
            const bool isRefusal = std::string(row.action) == "refusal";
            const std::string action =
                isRefusal ? std::string("status 200|=") + kRefusal : row.action;
            relay_.On(row.method, action.c_str(), row.skip, row.times);
            ShareWish wish = Wish();
            wish.password = &password;
            EXPECT_EQ(row.outcome, FindAndMake(wish))
                << row.method << " " << action << testing::PrintToString(relay_.Requests());
            EXPECT_EQ(row.shares, Shares().size()) << row.method << " " << action;
        }
    }
}

TEST_F(ShareFaults, NeverMakeASecondShareAfterALostReply) {
    relay_.On("POST", "swallow");
    const auto made = Make(Wish());
    ASSERT_EQ("done", Outcome(made));
    EXPECT_EQ("PUT PROPFIND GET GET POST GET", relay_.Methods());
    EXPECT_EQ("content", Download(std::get<LinkShare>(made).link));
}

// The server carries the first request out only after the client has looked.
TEST_F(ShareFaults, KeepOneShareWhenALostRequestIsCarriedOutLate) {
    const std::string late = "path=%2Fa%20b.txt&shareType=3&label=ours%201&password=a%20password";
    const ShareApi api = Api();
    relay_.On("POST", "refuse");
    relay_.On("POST", "hold");
    const ObLib::Secret password("a password");
    ShareWish wish = Wish();
    wish.password = &password;
    std::thread server([&] {
        relay_.WaitUntilHeld(1);
        HttpRequest post;
        post.method = "POST";
        post.url = ServerUrl(L"OCS_URL");
        post.url.path = "/cloud/ocs/v2.php/apps/files_sharing/api/v1/shares";
        post.headers = {{"OCS-APIRequest", "true"},
                        {"Content-Type", "application/x-www-form-urlencoded"}};
        post.body = late;
        const HttpLogin login{post.url.origin, login_.user, login_.password};
        EXPECT_EQ("done", Outcome(DavClient(session_, login, nullptr, kNoPauses).Send(post)));
        relay_.Release();
    });
    const auto made = api.Make(client_, wish);
    server.join();
    ASSERT_EQ("done", Outcome(made));
    EXPECT_EQ(std::vector<std::string>{"/a b.txt password - ours 1"}, Shares());
    EXPECT_EQ("content", Download(std::get<LinkShare>(made).link, "a password"));
}

TEST_F(ShareFaults, LookUpAShareWhoseReplyIsHuge) {
    relay_.On("POST", ("status 200|=" + std::string(kLongestShareReply + 1, 'x')).c_str());
    EXPECT_EQ(Outcome(HttpFault::ReplyTooLong), Outcome(Make(Wish())));
    relay_.On("GET", ("status 200|=" + std::string(kLongestShareReply + 1, 'x')).c_str());
    EXPECT_EQ(Outcome(HttpFault::ReplyTooLong), FindAndMake(Wish()));
    EXPECT_TRUE(Shares().empty());
}

TEST_F(ShareFaults, FindNothingWhereTheLoginCountsForTheFilesOnly) {
    relay_.On("GET", "status 401", 0, 2);
    EXPECT_EQ("none", FindAndMake(Wish()));
}

// Servers lock an account after a few wrong passwords.
TEST_F(ShareFaults, TryAWrongPasswordOnce) {
    relay_.Begin("ocs");
    const HttpLogin wrong{login_.origin, login_.user, ObLib::Secret("wrong")};
    const DavClient client(session_, wrong, nullptr, kNoPauses);
    EXPECT_EQ(Outcome(DavFault::WrongLogin, 401), Outcome(ShareApi::Find(client, root_)));
    EXPECT_EQ(1, relay_.Logins());
}

TEST_F(ShareFaults, WaitForASilentInterfaceOnceAndNotLong) {
    relay_.Begin("ocs");
    relay_.On("GET", "hold", 0, 2);
    DavPatience patience = kNoPauses;
    patience.question = 50;
    const DavClient client(session_, login_, nullptr, patience);
    EXPECT_EQ(Outcome(HttpFault::TimedOut), Outcome(ShareApi::Find(client, root_)));
    relay_.Release();
    EXPECT_EQ("PROPFIND GET", relay_.Methods());
}

// The request that is released at the end may still make its link during a later test, which has
// another label.
TEST_F(ShareFaults, EndAtOnceWhenCancelled) {
    const ShareApi api = Api();
    relay_.On("POST", "hold");
    std::thread canceller([&] {
        relay_.WaitUntilHeld(1);
        SetEvent(cancelled_.Get());
    });
    EXPECT_EQ(Outcome(HttpFault::Cancelled), Outcome(api.Make(client_, Wish("cancelled"))));
    canceller.join();
    relay_.Release();
}

TEST_F(ShareFaults, QuoteTheServersMessageCleaned) {
    const auto message = [&](const std::string& text) {
        relay_.On("POST", ("status 403|=<ocs><meta><statuscode>403</statuscode><message>" + text +
                           "</message></meta></ocs>")
                              .c_str());
        const auto refused = Make(Wish());
        const auto* error = std::get_if<ShareError>(&refused);
        return error ? error->message : L"done";
    };
    EXPECT_EQ(L"Not for you.", message("  Not &#9; for\xC2\xA0 you. "));
    EXPECT_EQ(L"a'b'c", message("a&quot;b\xE2\x80\x9D"
                                "c"));
    EXPECT_EQ(L"txt.exe", message("\xE2\x80\xAEtxt.\xE2\x80\x8B"
                                  "exe\xEF\xBB\xBF"));
    EXPECT_EQ(std::wstring(199, L'x') + L'\u2026', message(std::string(201, 'x')));
    EXPECT_EQ(L"", message(""));
    EXPECT_EQ(L"", message("\xFF\xFE"));
}

} // namespace
} // namespace providers
