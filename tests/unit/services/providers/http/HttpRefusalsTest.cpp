#include <gtest/gtest.h>
#include <winhttp.h>

#include "tests/support/ImportPatch.h"
#include "tests/unit/services/providers/http/HttpFixture.h"

namespace providers {
namespace {

decltype(&WinHttpSetOption) realSetOption = nullptr;
std::vector<std::string> revocation; // what was asked for

// Knows the option that Wine's client doesn't know: no answer about revocation is no refusal.
BOOL WINAPI RecordRevocation(HINTERNET handle, DWORD option, void* value, DWORD size) {
    const DWORD number = size == sizeof(DWORD) && value ? *static_cast<const DWORD*>(value) : 0;
    if (option == 155) {
        revocation.push_back("no answer is fine");
        return TRUE;
    }
    if (option == WINHTTP_OPTION_ENABLE_FEATURE && number == WINHTTP_ENABLE_SSL_REVOCATION)
        revocation.push_back("asked");
    return realSetOption(handle, option, value, size);
}

class HttpRefusals : public testing::Test {
protected:
    HttpResult Send(const HttpRequest& request) const { return session_.Send(request, nullptr); }
    int Ask(const char* method, std::string_view file = "") const {
        return Outcome(Send(Request(method, ServerUrl(L"RELAY_URL", file), &login_)));
    }

    obtest::Relay relay_{"apache"};
    HttpSession session_;
    HttpLogin login_ = LoginFor(ServerUrl(L"RELAY_URL"));
};

TEST_F(HttpRefusals, FollowsRedirectsOfSafeRequestsWithinTheServer) {
    relay_.On("PROPFIND", "status 301|Location: ../dav/./");
    HttpRequest find = Request("PROPFIND", ServerUrl(L"RELAY_URL", "x"), &login_);
    find.headers = {{"Depth", "0"}};
    const HttpResult result = Send(find);
    ASSERT_EQ(207, Outcome(result));
    EXPECT_EQ("/dav/", std::get<HttpReply>(result).url.path);
    EXPECT_EQ(2, relay_.Logins());
}

TEST_F(HttpRefusals, FollowsNoRedirectToAnotherServerOrOfAChange) {
    const std::string here = HttpUrlText(ServerUrl(L"RELAY_URL"));
    const std::string other = HttpUrlText(ServerUrl(L"APACHE_URL"));
    for (const std::string& location :
         {other, std::string("http://localhost/"), std::string("https://127.0.0.1/"),
          std::string("file:///etc"), std::string()}) {
        relay_.On("GET", ("status 302|Location: " + location).c_str());
        EXPECT_EQ(Outcome(HttpFault::Redirected), Ask("GET")) << location;
    }
    for (const char* method : {"PUT", "MOVE", "DELETE", "MKCOL"}) {
        relay_.On(method, ("status 307|Location: " + here + "y").c_str());
        EXPECT_EQ(Outcome(HttpFault::Redirected), Ask(method, "x")) << method;
    }
    EXPECT_EQ("GET GET GET GET GET PUT MOVE DELETE MKCOL", relay_.Methods());
}

TEST_F(HttpRefusals, FollowsNoRedirectFromHttpsToHttp) {
    HttpUrl url = ServerUrl(L"TLS_GOOD_URL");
    const HttpLogin login = LoginFor(url);
    url.path = "/tohttp";
    for (const char* method : {"GET", "PROPFIND", "PUT"})
        EXPECT_EQ(Outcome(HttpFault::Redirected), Outcome(Send(Request(method, url, &login))))
            << method;
}

TEST_F(HttpRefusals, FollowsNoEndlessRedirects) {
    relay_.On("GET", "status 302|Location: /dav/", 0, 100);
    EXPECT_EQ(Outcome(HttpFault::Redirected), Ask("GET"));
    EXPECT_EQ("GET GET GET GET GET GET", relay_.Methods());
}

// Each differs from the good one in one thing.
TEST_F(HttpRefusals, TakesNoBadCertificate) {
    for (const wchar_t* server :
         {L"TLS_EXPIRED_URL", L"TLS_EARLY_URL", L"TLS_OTHERHOST_URL", L"TLS_UNKNOWN_URL"}) {
        const HttpUrl url = ServerUrl(server);
        const HttpLogin login = LoginFor(url);
        const HttpResult result = Send(Request("GET", url, &login));
        ASSERT_EQ(Outcome(HttpFault::Certificate), Outcome(result)) << ToUtf8(server);
        EXPECT_NE(CertificateFault::None, std::get<HttpError>(result).certificate);
    }
    std::puts("HttpRefusals: this system's client doesn't report what is wrong with a certificate; "
              "HttpFaultsTest has "
              "given reports");
}

TEST_F(HttpRefusals, TakesAGoodCertificate) {
    const HttpUrl url = ServerUrl(L"TLS_GOOD_URL", "tls");
    const HttpLogin login = LoginFor(url);
    HttpRequest put = Request("PUT", url, &login);
    put.body = std::string(500'000, 'x');
    EXPECT_EQ(201, Outcome(Send(put)));
    const HttpResult got = Send(Request("GET", url, &login));
    ASSERT_EQ(200, Outcome(got));
    EXPECT_EQ(500'000u, std::get<HttpReply>(got).body.size());
}

decltype(&WinHttpSendRequest) realSendRequest = nullptr;
DWORD failure = 0; // of the next requests
int failures = 0;  // how many of them are left
int sent = 0;

BOOL WINAPI SendOrFail(HINTERNET request, const wchar_t* headers, DWORD length, void* optional,
                       DWORD size, DWORD total, DWORD_PTR context) {
    ++sent;
    if (failures-- <= 0)
        return realSendRequest(request, headers, length, optional, size, total, context);
    SetLastError(failure);
    return FALSE;
}

TEST_F(HttpRefusals, TakesACertificateOfWhichNobodyCanSayWhetherItWasRevoked) {
    const obtest::ImportPatch<decltype(WinHttpSendRequest)> patch(
        "winhttp.dll", "WinHttpSendRequest", &SendOrFail);
    ASSERT_TRUE(patch.Ok());
    realSendRequest = patch.Real();
    const HttpUrl url = ServerUrl(L"TLS_GOOD_URL", "none");
    const HttpLogin login = LoginFor(url);
    const auto ask = [&](DWORD code, int times) {
        failure = code;
        failures = times;
        sent = 0;
        return Outcome(Send(Request("GET", url, &login)));
    };
    EXPECT_EQ(404, ask(ERROR_WINHTTP_SECURE_CERT_REV_FAILED, 1));
    EXPECT_EQ(2, sent);
    EXPECT_EQ(Outcome(HttpFault::Certificate), ask(ERROR_WINHTTP_SECURE_CERT_REV_FAILED, 2));
    EXPECT_EQ(2, sent);
    EXPECT_EQ(Outcome(HttpFault::Certificate), ask(ERROR_WINHTTP_SECURE_CERT_REVOKED, 1));
    EXPECT_EQ(1, sent) << "one that was revoked isn't tried again";
}

// The test authority has no list of revoked certificates.
TEST_F(HttpRefusals, AsksForRevocationAndTakesNoAnswerForNone) {
    const obtest::ImportPatch<decltype(WinHttpSetOption)> patch("winhttp.dll", "WinHttpSetOption",
                                                                &RecordRevocation);
    ASSERT_TRUE(patch.Ok());
    realSetOption = patch.Real();
    const HttpUrl url = ServerUrl(L"TLS_GOOD_URL", "none");
    const HttpLogin login = LoginFor(url);
    EXPECT_EQ(404, Outcome(Send(Request("GET", url, &login))));
    EXPECT_EQ((std::vector<std::string>{"no answer is fine", "asked"}), revocation);
    EXPECT_EQ(Outcome(HttpFault::Certificate),
              Outcome(Send(Request("GET", ServerUrl(L"TLS_UNKNOWN_URL"), &login))));
    std::puts("HttpRefusals: this system's client has no revocation without an answer; the test "
              "accepts the option for it");
}

TEST_F(HttpRefusals, SendsNothingByPlainHttpToAnotherMachine) {
    EXPECT_EQ(Outcome(HttpFault::NeedsHttps),
              Outcome(Send(Request("GET", *ParseHttpUrl("http://192.0.2.1/"), &login_))));
}

TEST_F(HttpRefusals, ReportsServersThatArentThere) {
    EXPECT_EQ(Outcome(HttpFault::NoConnection),
              Outcome(Send(Request("GET", *ParseHttpUrl("http://127.0.0.1:1/"), &login_))));
    EXPECT_EQ(Outcome(HttpFault::NoName),
              Outcome(Send(Request("GET", *ParseHttpUrl("https://host.invalid/"), &login_))));
}

} // namespace
} // namespace providers
