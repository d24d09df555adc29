#include "services/providers/http/HttpSession.h"

#include <algorithm>
#include <utility>

#include "ObLib/Src/AsciiLetters.h"
#include "services/providers/http/HttpExchange.h"
#include "services/providers/http/HttpPolicy.h"

namespace providers {
namespace {

constexpr wchar_t kUserAgent[] = L"WebVellant";
constexpr int kMostRedirects = 5;
constexpr int kProxyWantsLogin = 407;

// A request that was given up ends on a thread of the client, some time later.
void PinThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&PinThisModule), &module);
}

// TLS 1.3 isn't known to every system that has this client.
void AllowNewProtocolsOnly(HINTERNET session) {
    DWORD protocols = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2 | WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_3;
    if (WinHttpSetOption(session, WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols, sizeof protocols))
        return;
    protocols = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
    WinHttpSetOption(session, WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols, sizeof protocols);
}

UniqueInternetHandle OpenSession() {
    UniqueInternetHandle session(WinHttpOpen(kUserAgent, WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY,
                                             WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS,
                                             WINHTTP_FLAG_ASYNC));
    if (session) AllowNewProtocolsOnly(session.Get());
    return session;
}

bool IsSafe(const std::string& method) {
    return method == "GET" || method == "HEAD" || method == "PROPFIND" || method == "OPTIONS";
}

// Before anything of the request was sent.
bool IsUnconfirmed(const HttpResult& result) {
    const auto* error = std::get_if<HttpError>(&result);
    return error && error->certificate == CertificateFault::Unconfirmed;
}

bool IsFromProxy(const HttpResult& result) {
    const auto* reply = std::get_if<HttpReply>(&result);
    return reply && reply->status == kProxyWantsLogin;
}

bool IsRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

std::optional<HttpError> RefusedBy(ServerRule rule) {
    if (rule == ServerRule::NeedsHttps) return HttpError{HttpFault::NeedsHttps};
    if (rule == ServerRule::NotListed) return HttpError{HttpFault::ServerNotListed};
    return std::nullopt;
}

bool EqualInAnyCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, ObLib::FoldAscii<char>, ObLib::FoldAscii<char>);
}

} // namespace

std::string_view HttpReply::Header(std::string_view name) const {
    for (const HttpHeader& header : headers)
        if (EqualInAnyCase(header.name, name)) return header.value;
    return {};
}

HttpSession::HttpSession(const HttpTimes& times) : times_(times) {
    PinThisModule();
    session_ = OpenSession();
}

HttpResult HttpSession::Send(const HttpRequest& request, HANDLE cancelled) const {
    HttpUrl url = request.url;
    for (int redirects = 0;; ++redirects) {
        HttpResult result = SendOnce(request, url, cancelled);
        const auto* reply = std::get_if<HttpReply>(&result);
        if (!reply || !IsRedirect(reply->status)) return result;
        const std::string_view location = reply->Header("Location");
        const auto next = ResolveHttpUrl(url, location);
        const bool isFollowed =
            !location.empty() && next && next->origin == url.origin && IsSafe(request.method);
        if (!isFollowed || redirects == kMostRedirects) {
            return HttpError{HttpFault::Redirected, static_cast<DWORD>(reply->status)};
        }
        url = *next;
    }
}

std::wstring HttpSession::ProxyOf(const HttpOrigin& server,
                                  const std::optional<std::wstring>& reported) const {
    const std::lock_guard guard(lock_);
    const auto known = std::find_if(proxies_.begin(), proxies_.end(),
                                    [&](const auto& proxy) { return proxy.first == server; });
    if (!reported) return known == proxies_.end() ? L"" : known->second;
    if (known == proxies_.end())
        proxies_.emplace_back(server, *reported);
    else
        known->second = *reported;
    return *reported;
}

HttpResult HttpSession::SendOnce(const HttpRequest& request, const HttpUrl& url,
                                 HANDLE cancelled) const {
    if (const auto refused = RefusedBy(RuleFor(url.origin))) return *refused;
    if (!session_) return HttpError{HttpFault::Failed, ERROR_WINHTTP_INTERNAL_ERROR};
    HttpExchange::Ways ways;
    std::wstring proxy;
    for (;;) {
        HttpExchange exchange(session_.Get(), request.times.value_or(times_), cancelled, ways);
        HttpResult result = exchange.Run(request, url);
        if (IsUnconfirmed(result) && std::exchange(ways.asksForRevocation, false)) continue;
        if (!IsFromProxy(result)) return result;
        if (proxy.empty()) proxy = ProxyOf(url.origin, exchange.Proxy(url));
        // A server that is reached directly gets no login, whatever status it makes up.
        const DWORD scheme = proxy.empty() || ways.proxyScheme != 0 ? 0 : exchange.ProxyScheme();
        if (scheme == 0)
            return HttpError{HttpFault::ProxyLogin, kProxyWantsLogin, CertificateFault::None,
                             proxy};
        ways.proxyScheme = scheme;
    }
}

} // namespace providers
