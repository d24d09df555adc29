#include "services/providers/webdav/DavSentence.h"

#include <algorithm>
#include <iterator>

#include "services/providers/http/Utf8.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

template <class Fault>
struct Row {
    Fault fault;
    UINT text;
};

constexpr Row<HttpFault> kHttpRows[] = {
    {HttpFault::NoName, OB_TEXT_DAV_NO_NAME},
    {HttpFault::NoConnection, OB_TEXT_DAV_NO_CONNECTION},
    {HttpFault::TimedOut, OB_TEXT_DAV_TIMED_OUT},
    {HttpFault::BrokenOff, OB_TEXT_DAV_BROKEN_OFF},
    {HttpFault::Redirected, OB_TEXT_DAV_REDIRECTED},
    {HttpFault::ReplyTooLong, OB_TEXT_DAV_NOT_DAV},
    {HttpFault::NeedsHttps, OB_TEXT_DAV_NEEDS_HTTPS},
    {HttpFault::ServerNotListed, OB_TEXT_DAV_NOT_LISTED},
    {HttpFault::FileUnreadable, OB_TEXT_DAV_FILE_UNREADABLE},
};

constexpr Row<CertificateFault> kCertificateRows[] = {
    {CertificateFault::Date, OB_TEXT_DAV_CERTIFICATE_DATE},
    {CertificateFault::Host, OB_TEXT_DAV_CERTIFICATE_HOST},
    {CertificateFault::Issuer, OB_TEXT_DAV_CERTIFICATE_ISSUER},
    {CertificateFault::Revoked, OB_TEXT_DAV_CERTIFICATE_REVOKED},
    {CertificateFault::Unconfirmed, OB_TEXT_DAV_CERTIFICATE_REVOKED},
};

constexpr Row<DavFault> kDavRows[] = {
    {DavFault::WrongLogin, OB_TEXT_DAV_WRONG_LOGIN},
    {DavFault::OtherLogin, OB_TEXT_DAV_OTHER_LOGIN},
    {DavFault::Forbidden, OB_TEXT_DAV_FORBIDDEN},
    {DavFault::NotFound, OB_TEXT_DAV_NOT_FOUND},
    {DavFault::NotPossible, OB_TEXT_DAV_NOT_DAV},
    {DavFault::Conflict, OB_TEXT_DAV_FOLDER_GONE},
    {DavFault::InTheWay, OB_TEXT_DAV_CONFLICT},
    {DavFault::Taken, OB_TEXT_DAV_CHANGED},
    {DavFault::TooLarge, OB_TEXT_DAV_TOO_LARGE},
    {DavFault::Locked, OB_TEXT_DAV_LOCKED},
    {DavFault::TooMany, OB_TEXT_DAV_TOO_MANY},
    {DavFault::NoSpace, OB_TEXT_DAV_NO_SPACE},
    {DavFault::NotDav, OB_TEXT_DAV_NOT_DAV},
    {DavFault::WrongSize, OB_TEXT_DAV_WRONG_SIZE},
};

template <class Fault, std::size_t Count>
UINT TextOf(const Row<Fault> (&rows)[Count], Fault fault, UINT otherwise) {
    const auto* row =
        std::find_if(std::begin(rows), std::end(rows),
                     [fault](const Row<Fault>& known) { return known.fault == fault; });
    return row == std::end(rows) ? otherwise : row->text;
}

UINT TextOf(const DavError& error) {
    if (error.fault != DavFault::Http) return TextOf(kDavRows, error.fault, OB_TEXT_DAV_STATUS);
    if (error.http.fault != HttpFault::Certificate)
        return TextOf(kHttpRows, error.http.fault, OB_TEXT_DAV_FAILED);
    return TextOf(kCertificateRows, error.http.certificate, OB_TEXT_DAV_CERTIFICATE);
}

// Whole minutes are enough.
std::wstring TooManyUntil(std::uint32_t seconds, const std::wstring& host) {
    if (seconds < 60) return FormatOwnText(OB_TEXT_DAV_TOO_MANY_A_MINUTE, {host});
    return FormatOwnText(OB_TEXT_DAV_TOO_MANY_UNTIL, {host, std::to_wstring(seconds / 60 + 1)});
}

} // namespace

std::wstring DavSentence(const DavError& error, const HttpOrigin& server) {
    if (IsHttp(error, HttpFault::Cancelled)) return {};
    const std::wstring host = FromUtf8(server.host).value_or(L"");
    if (error.fault == DavFault::TooMany && error.retryAfter) {
        return TooManyUntil(*error.retryAfter, host);
    }
    if (IsHttp(error, HttpFault::ProxyLogin)) {
        const UINT text =
            error.http.proxy.empty() ? OB_TEXT_DAV_PROXY_LOGIN : OB_TEXT_DAV_NAMED_PROXY_LOGIN;
        return FormatOwnText(text, {host, error.http.proxy});
    }
    const DWORD code =
        error.fault == DavFault::Http ? error.http.code : static_cast<DWORD>(error.status);
    return FormatOwnText(TextOf(error), {host, std::to_wstring(code)});
}

std::wstring DavUploadSentence(const DavError& error, const HttpOrigin& server,
                               const std::wstring& fileName) {
    const std::wstring why =
        error.fault == DavFault::Forbidden
            ? FormatOwnText(OB_TEXT_DAV_NO_STORING, {TextFromUtf8(server.host)})
            : DavSentence(error, server);
    return why.empty() ? why : FormatOwnText(OB_TEXT_DAV_NOT_UPLOADED, {fileName, why});
}

} // namespace providers
