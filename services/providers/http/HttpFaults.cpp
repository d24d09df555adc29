#include "services/providers/http/HttpFaults.h"

#include <winhttp.h>

#include <algorithm>
#include <iterator>

namespace providers {
namespace {

struct FaultOfCode {
    DWORD code;
    HttpFault fault;
    CertificateFault certificate;
};

constexpr FaultOfCode kFaults[] = {
    {ERROR_WINHTTP_NAME_NOT_RESOLVED, HttpFault::NoName, CertificateFault::None},
    {ERROR_WINHTTP_CANNOT_CONNECT, HttpFault::NoConnection, CertificateFault::None},
    {ERROR_WINHTTP_TIMEOUT, HttpFault::TimedOut, CertificateFault::None},
    {ERROR_WINHTTP_OPERATION_CANCELLED, HttpFault::Cancelled, CertificateFault::None},
    {ERROR_WINHTTP_CONNECTION_ERROR, HttpFault::BrokenOff, CertificateFault::None},
    {ERROR_WINHTTP_INVALID_SERVER_RESPONSE, HttpFault::BrokenOff, CertificateFault::None},
    {ERROR_WINHTTP_RESEND_REQUEST, HttpFault::BrokenOff, CertificateFault::None},
    // Errors of the connection itself, which some clients hand on.
    {WSAECONNRESET, HttpFault::BrokenOff, CertificateFault::None},
    {WSAECONNABORTED, HttpFault::BrokenOff, CertificateFault::None},
    {WSAENOTCONN, HttpFault::BrokenOff, CertificateFault::None},
    {WSAESHUTDOWN, HttpFault::BrokenOff, CertificateFault::None},
    {WSAETIMEDOUT, HttpFault::TimedOut, CertificateFault::None},
    {WSAECONNREFUSED, HttpFault::NoConnection, CertificateFault::None},
    {ERROR_WINHTTP_SECURE_CERT_DATE_INVALID, HttpFault::Certificate, CertificateFault::Date},
    {ERROR_WINHTTP_SECURE_CERT_CN_INVALID, HttpFault::Certificate, CertificateFault::Host},
    {ERROR_WINHTTP_SECURE_INVALID_CA, HttpFault::Certificate, CertificateFault::Issuer},
    {ERROR_WINHTTP_SECURE_CERT_REVOKED, HttpFault::Certificate, CertificateFault::Revoked},
    {ERROR_WINHTTP_SECURE_CERT_REV_FAILED, HttpFault::Certificate, CertificateFault::Unconfirmed},
    {ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE, HttpFault::Certificate, CertificateFault::Other},
    {ERROR_WINHTTP_SECURE_INVALID_CERT, HttpFault::Certificate, CertificateFault::Other},
    {ERROR_WINHTTP_SECURE_CHANNEL_ERROR, HttpFault::Certificate, CertificateFault::Other},
    {ERROR_WINHTTP_SECURE_FAILURE, HttpFault::Certificate, CertificateFault::Other},
};

struct FaultOfFlag {
    DWORD flag;
    CertificateFault certificate;
};

// The most serious first.
constexpr FaultOfFlag kCertificateFlags[] = {
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED, CertificateFault::Revoked},
    {WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA, CertificateFault::Issuer},
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID, CertificateFault::Host},
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID, CertificateFault::Date},
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_REV_FAILED, CertificateFault::Unconfirmed},
};

} // namespace

HttpError HttpErrorFor(DWORD code, DWORD certificateFlags) noexcept {
    const auto* row = std::find_if(std::begin(kFaults), std::end(kFaults),
                                   [code](const FaultOfCode& fault) { return fault.code == code; });
    if (row == std::end(kFaults)) return {HttpFault::Failed, code};
    HttpError error{row->fault, code, row->certificate};
    if (error.certificate != CertificateFault::Other) return error;
    for (const FaultOfFlag& fault : kCertificateFlags) {
        if (certificateFlags & fault.flag) {
            error.certificate = fault.certificate;
            break;
        }
    }
    return error;
}

} // namespace providers
