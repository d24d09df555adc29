// One request on the wire and its reply. Part of HttpSession.
#pragma once

#include <memory>
#include <optional>

#include "services/providers/http/HttpTypes.h"
#include "services/providers/http/InternetHandle.h"

namespace providers {

// The client works on threads of its own and reports the end of each step to a callback; this
// thread waits for that, for the caller's event, and no longer than the step may take. What the
// client may still use after the request was given up (its buffers) is in a record that lives until
// the client has reported its last.
class HttpExchange {
public:
    struct Ways {
        // How the system's user logs in at the proxy (WINHTTP_AUTH_SCHEME_...); 0: not at all.
        DWORD proxyScheme = 0;
        bool asksForRevocation = true; // where the system can take no answer for an answer
    };

    HttpExchange(HINTERNET session, const HttpTimes& times, HANDLE cancelled, const Ways& ways);
    ~HttpExchange();
    HttpExchange(const HttpExchange&) = delete;
    HttpExchange& operator=(const HttpExchange&) = delete;

    HttpResult Run(const HttpRequest& request, const HttpUrl& url);

    // After a reply with status 407: the proxy that the request went to; empty where it went to the
    // server itself, or nothing can be concluded. Nothing where the connection was there before.
    std::optional<std::wstring> Proxy(const HttpUrl& url) const;
    // How the system's user can log in there without being asked; 0: not at all.
    DWORD ProxyScheme() const;

private:
    struct Shared;
    using Failure = std::optional<HttpError>; // nothing: done

    static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* info,
                                  DWORD size);

    Failure Open(const HttpRequest& request, const HttpUrl& url);
    Failure SetOptions(const HttpUrl& url);
    Failure SetAuthentication();
    void SetCertificates();
    Failure SendAndReceive(const HttpRequest& request, HttpReply& reply);
    Failure AddHeaders(const HttpRequest& request, const HttpUrl& url);
    Failure SendHead();
    Failure SendBody(const HttpRequest& request);
    Failure SendBytes(const HttpRequest& request, std::string_view bytes);
    Failure SendSecret(const HttpRequest& request, const ObLib::Secret& secret);
    Failure SendFile(const HttpRequest& request, const HttpFilePart& part);
    Failure ReceiveHead(HttpReply& reply, DWORD limit);
    Failure ReceiveBody(const HttpRequest& request, HttpReply& reply);

    Failure ReceiveRefusal(const HttpRequest& request, HttpReply& reply, const HttpError& unsent);

    Failure Write(std::size_t buffer, std::size_t size);
    // Waits for the step that was begun: true when the call that began it returned true.
    Failure Wait(BOOL begun, DWORD limit);
    HttpError Error(DWORD code) const;

    HINTERNET session_;
    HttpTimes times_;
    HANDLE cancelled_;
    Ways ways_;
    std::shared_ptr<Shared> shared_;
    UniqueInternetHandle connection_;
    UniqueInternetHandle request_; // closed before the connection
};

} // namespace providers
