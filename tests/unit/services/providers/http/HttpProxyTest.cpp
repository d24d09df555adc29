#include <gtest/gtest.h>
#include <winhttp.h>

#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/providers/http/HttpFixture.h"

namespace providers {
namespace {

decltype(&WinHttpOpen) realOpen = nullptr;
std::wstring proxyOfTheSystem; // "host:port"

HINTERNET WINAPI OpenWithProxy(const wchar_t* agent, DWORD, const wchar_t*, const wchar_t*,
                               DWORD flags) {
    return realOpen(agent, WINHTTP_ACCESS_TYPE_NAMED_PROXY, proxyOfTheSystem.c_str(),
                    WINHTTP_NO_PROXY_BYPASS, flags);
}

std::vector<std::string> logins; // that the client was given

BOOL WINAPI RecordLogin(HINTERNET, DWORD target, DWORD scheme, const wchar_t* user,
                        const wchar_t* password, void*) {
    logins.push_back((target == WINHTTP_AUTH_TARGET_PROXY ? "proxy " : "server ") +
                     std::to_string(scheme) + (user || password ? " other" : " system's user"));
    return TRUE;
}

decltype(&WinHttpSetStatusCallback) realSetCallback = nullptr;

WINHTTP_STATUS_CALLBACK WINAPI ReportNoNames(HINTERNET handle, WINHTTP_STATUS_CALLBACK callback,
                                             DWORD reports, DWORD_PTR reserved) {
    return realSetCallback(handle, callback, reports & ~WINHTTP_CALLBACK_FLAG_RESOLVE_NAME,
                           reserved);
}

// The relay as the system's proxy, in front of a server that there isn't.
class HttpProxy : public testing::Test {
protected:
    static void SetUpTestSuite() {
        std::puts(
            "HttpProxy: this system's client has no automatic proxy; the tests name one to it");
    }
    HttpProxy() {
        obtest::SetMachinePolicy(L"AllowPlainHttp", L"1");
        EXPECT_TRUE(patch_.Ok() && recorded_.Ok());
        logins.clear();
        realOpen = patch_.Real();
        proxyOfTheSystem = L"localhost:" + std::to_wstring(ServerUrl(L"RELAY_URL").origin.port);
    }
    ~HttpProxy() override { obtest::ClearProductRegistry(); }

    HttpResult Ask(const HttpUrl& url) const { return Ask(url, HttpSession()); }
    HttpResult Ask(const HttpUrl& url, const HttpSession& session) const {
        HttpLogin login = login_;
        login.origin = url.origin;
        HttpRequest request = Request("PROPFIND", url, &login);
        request.headers = {{"Depth", "0"}};
        return session.Send(request, nullptr);
    }

    obtest::Relay relay_{"apache"};
    HttpUrl url_ = ParseHttpUrl("http://files.example/dav/").value();
    HttpLogin login_{url_.origin, obtest::ServerValue(L"SERVER_USER"),
                     ObLib::Secret(ToUtf8(obtest::ServerValue(L"SERVER_PASSWORD")).c_str())};
    obtest::ImportPatch<decltype(WinHttpOpen)> patch_{"winhttp.dll", "WinHttpOpen", &OpenWithProxy};
    obtest::ImportPatch<decltype(WinHttpSetCredentials)> recorded_{
        "winhttp.dll", "WinHttpSetCredentials", &RecordLogin};
};

TEST_F(HttpProxy, TakesTheRequest) {
    EXPECT_EQ(207, Outcome(Ask(url_)));
    EXPECT_EQ((std::vector<std::string>{"PROPFIND http://files.example:80/dav/ 0 207"}),
              relay_.Requests());
    EXPECT_EQ(std::vector<std::string>{}, logins);
}

TEST_F(HttpProxy, GetsTheLoginOfTheSystemsUserWhenItWantsOne) {
    for (const auto& [scheme, number] : {std::pair{"NTLM", "2"}, std::pair{"Negotiate", "16"}}) {
        relay_.Begin("apache");
        logins.clear();
        relay_.On("PROPFIND", (std::string("status 407|Proxy-Authenticate: ") + scheme).c_str());
        EXPECT_EQ(207, Outcome(Ask(url_))) << scheme;
        EXPECT_EQ(std::vector{std::string("proxy ") + number + " system's user"}, logins);
        EXPECT_EQ("PROPFIND PROPFIND", relay_.Methods());
    }
}

// As on a connection that was kept.
TEST_F(HttpProxy, GetsTheLoginAlsoWhereItsNameIsntReportedAgain) {
    const HttpSession session;
    relay_.On("PROPFIND", "status 407|Proxy-Authenticate: NTLM");
    EXPECT_EQ(207, Outcome(Ask(url_, session)));
    const obtest::ImportPatch<decltype(WinHttpSetStatusCallback)> patch(
        "winhttp.dll", "WinHttpSetStatusCallback", &ReportNoNames);
    ASSERT_TRUE(patch.Ok());
    realSetCallback = patch.Real();
    relay_.On("PROPFIND", "status 407|Proxy-Authenticate: NTLM");
    EXPECT_EQ(207, Outcome(Ask(url_, session)));
    EXPECT_EQ(2u, logins.size());
    // A proxy that was never named gets none.
    relay_.On("PROPFIND", "status 407|Proxy-Authenticate: NTLM");
    EXPECT_EQ(Outcome(HttpFault::ProxyLogin), Outcome(Ask(url_)));
    EXPECT_EQ(2u, logins.size());
}

TEST_F(HttpProxy, IsNamedWhenItDoesntTakeThatLogin) {
    for (const auto& [scheme, times] :
         {std::pair{"Basic realm=x", 1u}, std::pair{"NTLM", 2u}, std::pair{"Negotiate", 2u}}) {
        relay_.Begin("apache");
        relay_.On("PROPFIND", (std::string("status 407|Proxy-Authenticate: ") + scheme).c_str(), 0,
                  100);
        const HttpResult result = Ask(url_);
        ASSERT_EQ(Outcome(HttpFault::ProxyLogin), Outcome(result)) << scheme;
        EXPECT_EQ(L"localhost", std::get<HttpError>(result).proxy);
        EXPECT_EQ(times, relay_.Requests().size()) << scheme;
    }
}

// Without a proxy.
TEST(HttpDirect, TriesNoLoginAtAServerThatRepliesAsAProxy) {
    const obtest::Relay relay("apache");
    const obtest::ImportPatch<decltype(WinHttpSetCredentials)> patch(
        "winhttp.dll", "WinHttpSetCredentials", &RecordLogin);
    ASSERT_TRUE(patch.Ok());
    logins.clear();
    relay.On("GET", "status 407|Proxy-Authenticate: NTLM", 0, 100);
    HttpUrl url = ServerUrl(L"RELAY_URL");
    url.origin.host = "localhost"; // a name, which the client reports
    const HttpLogin login = LoginFor(url);
    const HttpResult result = HttpSession().Send(Request("GET", url, &login), nullptr);
    ASSERT_EQ(Outcome(HttpFault::ProxyLogin), Outcome(result));
    EXPECT_EQ(L"", std::get<HttpError>(result).proxy);
    EXPECT_EQ("GET", relay.Methods());
    EXPECT_EQ(std::vector<std::string>{}, logins);
}

} // namespace
} // namespace providers
