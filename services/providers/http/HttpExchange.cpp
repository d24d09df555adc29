#include "services/providers/http/HttpExchange.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <mutex>

#include "services/providers/http/HttpFaults.h"
#include "services/providers/http/Utf8.h"

namespace providers {
namespace {

constexpr std::size_t kBlock = 256u << 10; // bytes: larger ones are no faster
constexpr DWORD kRefusalLimit = 2'000;     // milliseconds
constexpr DWORD kReports = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                           WINHTTP_CALLBACK_FLAG_SECURE_FAILURE |
                           WINHTTP_CALLBACK_FLAG_RESOLVE_NAME;
constexpr int kMostRounds = 4; // of a login at a proxy

std::wstring Wide(std::string_view bytes) { return std::wstring(bytes.begin(), bytes.end()); }

// The client takes an IPv6 address without its brackets.
std::wstring HostForTheClient(const HttpOrigin& origin) {
    std::string_view host = origin.host;
    if (host.starts_with('[')) host = host.substr(1, host.size() - 2);
    return FromUtf8(host).value_or(L"");
}

std::uint64_t BodySize(const HttpRequest& request) {
    if (const auto* bytes = std::get_if<std::string>(&request.body)) return bytes->size();
    if (const auto* part = std::get_if<HttpFilePart>(&request.body)) return part->size;
    if (const auto* secret = std::get_if<ObLib::Secret>(&request.body))
        return secret->Bytes().size();
    return 0;
}

// A text that is wiped at the end of its scope. Its capacity has to be reserved first, so that no
// copy of it stays.
struct WipedText {
    std::wstring text;
    ~WipedText() { SecureZeroMemory(text.data(), text.capacity() * sizeof(wchar_t)); }
};

void AppendBase64(std::wstring& to, std::string_view bytes) {
    constexpr wchar_t kDigits[] =
        L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto at = [&](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
    };
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const unsigned group = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
        to += kDigits[group >> 18];
        to += kDigits[group >> 12 & 63];
        to += i + 1 < bytes.size() ? kDigits[group >> 6 & 63] : L'=';
        to += i + 2 < bytes.size() ? kDigits[group & 63] : L'=';
    }
}

// "Authorization: Basic ..."; the password is in wiped memory only.
void WriteLogin(const HttpLogin& login, WipedText& header) {
    const std::string user = ToUtf8(login.user) + ":";
    const auto password = login.password.Bytes();
    std::string both;
    both.reserve(user.size() + password.size());
    both.append(user).append(password.begin(), password.end());
    header.text.reserve(64 + both.size() * 2);
    header.text = L"Authorization: Basic ";
    AppendBase64(header.text, both);
    header.text += L"\r\n";
    SecureZeroMemory(both.data(), both.size());
}

// Reads exactly one block of the body's file. The system's error code, or 0.
DWORD ReadPart(const HttpFilePart& part, std::uint64_t at, char* buffer, std::size_t size) {
    for (std::size_t got = 0; got < size;) {
        OVERLAPPED place{};
        const std::uint64_t from = part.offset + at + got;
        place.Offset = static_cast<DWORD>(from);
        place.OffsetHigh = static_cast<DWORD>(from >> 32);
        DWORD read = 0;
        if (!ReadFile(part.file, buffer + got, static_cast<DWORD>(size - got), &read, &place))
            return GetLastError();
        if (read == 0) return ERROR_HANDLE_EOF;
        got += read;
    }
    return 0;
}

std::vector<HttpHeader> ParseHeaders(std::wstring_view lines) {
    std::vector<HttpHeader> headers;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = std::min(lines.find(L"\r\n", at), lines.size());
        const std::wstring_view line = lines.substr(at, end - at);
        const std::size_t colon = line.find(L':');
        if (colon != std::wstring_view::npos) {
            const std::size_t value = line.find_first_not_of(L" \t", colon + 1);
            headers.push_back({ToUtf8(line.substr(0, colon)),
                               value == std::wstring_view::npos ? "" : ToUtf8(line.substr(value))});
        }
        at = end + 2;
    }
    return headers;
}

// Whether fewer bytes came than the reply has announced.
bool IsCut(const HttpReply& reply) {
    const std::string_view length = reply.Header("Content-Length");
    std::uint64_t announced = 0;
    const auto [end, error] =
        std::from_chars(length.data(), length.data() + length.size(), announced);
    return !length.empty() && error == std::errc() && reply.body.size() < announced;
}

} // namespace

// Used by the thread of the exchange and by the client's.
struct HttpExchange::Shared {
    std::mutex mutex;
    ObLib::UniqueKernelHandle done{
        CreateEventW(nullptr, FALSE, FALSE, nullptr)}; // a step has ended
    DWORD error = 0;                                   // of that step
    DWORD size = 0;                                    // bytes that came, or that it read
    DWORD certificate = 0;                             // flags of a refused certificate
    std::wstring peer;                                 // what is asked: the server or a proxy
    std::array<std::vector<char>, 2> buffers;          // of the request's body
    std::vector<char> reply; // not one of those: a write may be given up and still use its buffer
    bool isSecret = false;   // what is in the first of them

    ~Shared() { Wipe(); }

    void Wipe() {
        if (isSecret) SecureZeroMemory(buffers[0].data(), buffers[0].size());
        isSecret = false;
    }

    // Called by the client, which must get no exception: a name that isn't kept isn't known.
    void SetPeer(const wchar_t* name) noexcept {
        const std::lock_guard lock(mutex);
        try {
            peer = name;
        } catch (const std::bad_alloc&) {
            peer.clear();
        }
    }

    void End(DWORD code, DWORD bytes) {
        const std::lock_guard lock(mutex);
        error = code;
        size = bytes;
        SetEvent(done.Get());
    }
};

HttpExchange::HttpExchange(HINTERNET session, const HttpTimes& times, HANDLE cancelled,
                           const Ways& ways)
    : session_(session), times_(times), cancelled_(cancelled), ways_(ways),
      shared_(std::make_shared<Shared>()) {}

// The client reports the end of the request handle last of all, and only then lets go of the
// record.
HttpExchange::~HttpExchange() = default;

void CALLBACK HttpExchange::OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* info,
                                     DWORD size) {
    auto* owner = reinterpret_cast<std::shared_ptr<Shared>*>(context);
    if (!owner) return; // the session's own handle, or that of a connection
    Shared& shared = **owner;
    switch (status) {
    case WINHTTP_CALLBACK_STATUS_RESOLVING_NAME:
        shared.SetPeer(static_cast<const wchar_t*>(info));
        break;
    case WINHTTP_CALLBACK_STATUS_SECURE_FAILURE:
        shared.certificate = *static_cast<const DWORD*>(info);
        break;
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        shared.End(static_cast<const WINHTTP_ASYNC_RESULT*>(info)->dwError, 0);
        break;
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_WRITE_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        shared.End(0, 0);
        break;
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
        shared.End(0, *static_cast<const DWORD*>(info));
        break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        shared.End(0, size);
        break;
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
        delete owner;
        break;
    }
}

HttpError HttpExchange::Error(DWORD code) const { return HttpErrorFor(code, shared_->certificate); }

HttpExchange::Failure HttpExchange::Wait(BOOL begun, DWORD limit) {
    if (!begun) return Error(GetLastError());
    const HANDLE events[] = {shared_->done.Get(), cancelled_};
    const DWORD result = WaitForMultipleObjects(cancelled_ ? 2 : 1, events, FALSE, limit);
    if (result == WAIT_OBJECT_0 + 1) return HttpError{HttpFault::Cancelled};
    if (result != WAIT_OBJECT_0) return HttpError{HttpFault::TimedOut, ERROR_WINHTTP_TIMEOUT};
    const std::lock_guard lock(shared_->mutex);
    if (shared_->error != 0) return Error(shared_->error);
    return std::nullopt;
}

HttpExchange::Failure HttpExchange::Open(const HttpRequest& request, const HttpUrl& url) {
    if (cancelled_ && WaitForSingleObject(cancelled_, 0) == WAIT_OBJECT_0)
        return HttpError{HttpFault::Cancelled};
    connection_.Reset(
        WinHttpConnect(session_, HostForTheClient(url.origin).c_str(), url.origin.port, 0));
    if (!connection_) return Error(GetLastError());
    // What is encoded stays as it is.
    const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY |
                        (url.origin.isSecure ? WINHTTP_FLAG_SECURE : 0);
    request_.Reset(WinHttpOpenRequest(connection_.Get(), Wide(request.method).c_str(),
                                      Wide(url.path + url.query).c_str(), nullptr,
                                      WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
    if (!request_) return Error(GetLastError());
    return SetOptions(url);
}

// No login of the user's but the request's own gets to a server. A proxy gets that of the system's
// user, in a form that doesn't reveal the password.
HttpExchange::Failure HttpExchange::SetAuthentication() {
    DWORD off = WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_REDIRECTS;
    if (ways_.proxyScheme == 0) off |= WINHTTP_DISABLE_AUTHENTICATION;
    if (!WinHttpSetOption(request_.Get(), WINHTTP_OPTION_DISABLE_FEATURE, &off, sizeof off))
        return Error(GetLastError());
    if (ways_.proxyScheme == 0) return std::nullopt;
    constexpr DWORD kProxyOnly = 3; // older systems don't know it, and some headers neither
    DWORD policy = kProxyOnly;
    if (!WinHttpSetOption(request_.Get(), WINHTTP_OPTION_AUTOLOGON_POLICY, &policy,
                          sizeof policy)) {
        policy = WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH;
        if (!WinHttpSetOption(request_.Get(), WINHTTP_OPTION_AUTOLOGON_POLICY, &policy,
                              sizeof policy))
            return Error(GetLastError());
    }
    if (!WinHttpSetCredentials(request_.Get(), WINHTTP_AUTH_TARGET_PROXY, ways_.proxyScheme,
                               nullptr, nullptr, nullptr))
        return Error(GetLastError());
    return std::nullopt;
}

void HttpExchange::SetCertificates() {
    // A server that would like a certificate of the user's, and needs none, gets none; otherwise
    // the system's client ends the request. Wine's client asks for none, and may not know the
    // option.
    WinHttpSetOption(request_.Get(), WINHTTP_OPTION_CLIENT_CERT_CONTEXT,
                     WINHTTP_NO_CLIENT_CERT_CONTEXT, 0);
    // A certificate that is known to be revoked is refused; one whose state is unknown is taken.
    // Where the system can't be told to take the latter, revocation isn't checked at all.
    constexpr DWORD kIgnoreRevocationOffline = 155; // not in every header
    DWORD on = TRUE;
    if (!ways_.asksForRevocation ||
        !WinHttpSetOption(request_.Get(), kIgnoreRevocationOffline, &on, sizeof on))
        return;
    DWORD feature = WINHTTP_ENABLE_SSL_REVOCATION;
    WinHttpSetOption(request_.Get(), WINHTTP_OPTION_ENABLE_FEATURE, &feature, sizeof feature);
}

HttpExchange::Failure HttpExchange::SetOptions(const HttpUrl& url) {
    if (auto failure = SetAuthentication()) return failure;
    // The steps are limited by their waits. A client with limits of its own may begin a step again.
    WinHttpSetTimeouts(request_.Get(), 0, 0, 0, 0);
    if (url.origin.isSecure) SetCertificates();
    WINHTTP_PROXY_INFO none{WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr};
    if (IsLoopback(url.origin))
        WinHttpSetOption(request_.Get(), WINHTTP_OPTION_PROXY, &none, sizeof none);
    WinHttpSetStatusCallback(request_.Get(), &OnStatus, kReports, 0);
    auto owner = std::make_unique<std::shared_ptr<Shared>>(shared_);
    auto context = reinterpret_cast<DWORD_PTR>(owner.get());
    if (!WinHttpSetOption(request_.Get(), WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context)) {
        return Error(GetLastError());
    }
    static_cast<void>(owner.release()); // OnStatus frees it when the handle is closed
    return std::nullopt;
}

HttpExchange::Failure HttpExchange::AddHeaders(const HttpRequest& request, const HttpUrl& url) {
    std::wstring lines;
    for (const HttpHeader& header : request.headers)
        lines += Wide(header.name + ": " + header.value + "\r\n");
    if (request.body.index() != 0)
        lines += L"Content-Length: " + std::to_wstring(BodySize(request)) + L"\r\n";
    const auto add = [&](const std::wstring& text) {
        return WinHttpAddRequestHeaders(request_.Get(), text.c_str(),
                                        static_cast<DWORD>(text.size()), WINHTTP_ADDREQ_FLAG_ADD);
    };
    if (!lines.empty() && !add(lines)) return Error(GetLastError());
    if (!request.login || request.login->origin != url.origin) return std::nullopt;
    WipedText login;
    WriteLogin(*request.login, login);
    if (!add(login.text)) return Error(GetLastError());
    return std::nullopt;
}

// The length is in a header of its own: the client's number for it has 32 bits.
HttpExchange::Failure HttpExchange::SendHead() {
    DWORD_PTR context = 0;
    DWORD size = sizeof context;
    WinHttpQueryOption(request_.Get(), WINHTTP_OPTION_CONTEXT_VALUE, &context, &size);
    return Wait(WinHttpSendRequest(request_.Get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0,
                                   WINHTTP_NO_REQUEST_DATA, 0, WINHTTP_IGNORE_REQUEST_TOTAL_LENGTH,
                                   context),
                times_.connect);
}

HttpExchange::Failure HttpExchange::Write(std::size_t buffer, std::size_t size) {
    return Wait(WinHttpWriteData(request_.Get(), shared_->buffers[buffer].data(),
                                 static_cast<DWORD>(size), nullptr),
                times_.transfer);
}

HttpExchange::Failure HttpExchange::SendBytes(const HttpRequest& request, std::string_view bytes) {
    shared_->buffers[0].assign(bytes.begin(), bytes.end());
    if (auto failure = Write(0, bytes.size())) return failure;
    if (request.progress) request.progress(bytes.size());
    return std::nullopt;
}

HttpExchange::Failure HttpExchange::SendSecret(const HttpRequest& request,
                                               const ObLib::Secret& secret) {
    shared_->isSecret = true; // until the client is done with it, also after a failure
    auto failure = SendBytes(request, secret.Text());
    if (!failure) shared_->Wipe();
    return failure;
}

// The next block is read while the client sends this one.
HttpExchange::Failure HttpExchange::SendFile(const HttpRequest& request, const HttpFilePart& part) {
    const auto block = [&](std::uint64_t at) {
        return static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, part.size - at));
    };
    for (auto& buffer : shared_->buffers) buffer.resize(block(0));
    DWORD unread = ReadPart(part, 0, shared_->buffers[0].data(), block(0));
    std::size_t current = 0;
    for (std::uint64_t at = 0; at < part.size; current ^= 1) {
        if (unread != 0) return HttpError{HttpFault::FileUnreadable, unread};
        const std::size_t size = block(at);
        const BOOL begun = WinHttpWriteData(request_.Get(), shared_->buffers[current].data(),
                                            static_cast<DWORD>(size), nullptr);
        const DWORD notBegun = begun ? 0 : GetLastError();
        at += size;
        unread = begun ? ReadPart(part, at, shared_->buffers[current ^ 1].data(), block(at)) : 0;
        SetLastError(notBegun);
        if (auto failure = Wait(begun, times_.transfer)) return failure;
        if (request.progress) request.progress(at);
    }
    return std::nullopt;
}

HttpExchange::Failure HttpExchange::SendBody(const HttpRequest& request) {
    if (BodySize(request) == 0) return std::nullopt;
    if (const auto* bytes = std::get_if<std::string>(&request.body))
        return SendBytes(request, *bytes);
    if (const auto* secret = std::get_if<ObLib::Secret>(&request.body))
        return SendSecret(request, *secret);
    return SendFile(request, std::get<HttpFilePart>(request.body));
}

HttpExchange::Failure HttpExchange::ReceiveHead(HttpReply& reply, DWORD limit) {
    if (auto failure = Wait(WinHttpReceiveResponse(request_.Get(), nullptr), limit)) return failure;
    DWORD status = 0;
    DWORD size = sizeof status;
    if (!WinHttpQueryHeaders(request_.Get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                             WINHTTP_HEADER_NAME_BY_INDEX, &status, &size,
                             WINHTTP_NO_HEADER_INDEX)) {
        return Error(GetLastError());
    }
    reply.status = static_cast<int>(status);
    size = 0;
    WinHttpQueryHeaders(request_.Get(), WINHTTP_QUERY_RAW_HEADERS_CRLF,
                        WINHTTP_HEADER_NAME_BY_INDEX, nullptr, &size, WINHTTP_NO_HEADER_INDEX);
    std::wstring lines(size / sizeof(wchar_t), L'\0');
    if (!WinHttpQueryHeaders(request_.Get(), WINHTTP_QUERY_RAW_HEADERS_CRLF,
                             WINHTTP_HEADER_NAME_BY_INDEX, lines.data(), &size,
                             WINHTTP_NO_HEADER_INDEX)) {
        return Error(GetLastError());
    }
    lines.resize(size / sizeof(wchar_t));
    reply.headers = ParseHeaders(lines);
    return std::nullopt;
}

// Only what has come is read: a read of more may block this thread until the rest has come, however
// slowly, so that neither a limit nor a cancel would end it.
HttpExchange::Failure HttpExchange::ReceiveBody(const HttpRequest& request, HttpReply& reply) {
    std::vector<char>& buffer = shared_->reply;
    buffer.resize(std::min(kBlock, request.longestReply + 1));
    const ULONGLONG start = GetTickCount64();
    const auto wait = [&](BOOL begun) {
        const ULONGLONG passed = std::min<ULONGLONG>(GetTickCount64() - start, times_.replyBody);
        const DWORD left = times_.replyBody - static_cast<DWORD>(passed);
        return Wait(begun, std::min(times_.transfer, left));
    };
    for (;;) {
        if (auto failure = wait(WinHttpQueryDataAvailable(request_.Get(), nullptr))) return failure;
        if (shared_->size == 0) break;
        const DWORD size = std::min(shared_->size, static_cast<DWORD>(buffer.size()));
        if (auto failure = wait(WinHttpReadData(request_.Get(), buffer.data(), size, nullptr)))
            return failure;
        if (shared_->size == 0) break;
        if (reply.body.size() + shared_->size > request.longestReply)
            return HttpError{HttpFault::ReplyTooLong};
        reply.body.append(buffer.data(), shared_->size);
    }
    if (request.method != "HEAD" && IsCut(reply)) return HttpError{HttpFault::BrokenOff};
    return std::nullopt;
}

// A server that refuses a body replies while the body is still coming, and then reads no more of it
// or ends the connection. Nothing when there is such a reply, else why the body wasn't sent.
HttpExchange::Failure HttpExchange::ReceiveRefusal(const HttpRequest& request, HttpReply& reply,
                                                   const HttpError& unsent) {
    // The late end of a write that was given up would be taken for that of the next step.
    if (unsent.fault == HttpFault::Cancelled || unsent.fault == HttpFault::FileUnreadable ||
        unsent.fault == HttpFault::TimedOut)
        return unsent;
    if (ReceiveHead(reply, std::min(times_.reply, kRefusalLimit)) || reply.status < 400)
        return unsent;
    ReceiveBody(request, reply); // as much as came
    return std::nullopt;
}

HttpExchange::Failure HttpExchange::SendAndReceive(const HttpRequest& request, HttpReply& reply) {
    if (auto failure = SendHead()) return failure;
    if (auto failure = SendBody(request)) return ReceiveRefusal(request, reply, *failure);
    if (auto failure = ReceiveHead(reply, times_.reply)) return failure;
    return ReceiveBody(request, reply);
}

// A login at a proxy takes several rounds, of which each sends the request anew.
HttpResult HttpExchange::Run(const HttpRequest& request, const HttpUrl& url) {
    HttpReply reply;
    reply.url = url;
    Failure failure = Open(request, url);
    if (!failure) failure = AddHeaders(request, url);
    if (!failure) failure = SendAndReceive(request, reply);
    for (int rounds = 1; ways_.proxyScheme != 0 && failure && rounds < kMostRounds &&
                         failure->code == ERROR_WINHTTP_RESEND_REQUEST;
         ++rounds)
        failure = SendAndReceive(request, reply);
    if (failure) return *failure;
    return reply;
}

std::optional<std::wstring> HttpExchange::Proxy(const HttpUrl& url) const {
    const std::wstring host = HostForTheClient(url.origin);
    // The client may write such a name in another way, so that nothing can be concluded.
    const bool isPlain = std::all_of(host.begin(), host.end(), [](wchar_t c) { return c < 0x80; });
    const std::lock_guard lock(shared_->mutex);
    if (shared_->peer.empty()) return std::nullopt;
    std::wstring peer = shared_->peer;
    if (peer.front() == L'[' && peer.back() == L']') peer = peer.substr(1, peer.size() - 2);
    return isPlain && _wcsicmp(host.c_str(), peer.c_str()) != 0 ? peer : L"";
}

DWORD HttpExchange::ProxyScheme() const {
    DWORD supported = 0;
    DWORD first = 0;
    DWORD target = 0;
    if (!WinHttpQueryAuthSchemes(request_.Get(), &supported, &first, &target)) return 0;
    if (target != WINHTTP_AUTH_TARGET_PROXY) return 0;
    for (const DWORD scheme : {WINHTTP_AUTH_SCHEME_NEGOTIATE, WINHTTP_AUTH_SCHEME_NTLM})
        if (supported & scheme) return scheme;
    return 0;
}

} // namespace providers
