#include "services/providers/http/HttpFaults.h"

#include <gtest/gtest.h>
#include <winhttp.h>

namespace providers {
namespace {

TEST(HttpFaultsTest, NamesWhatIsWrongWithACertificate) {
    struct Row {
        DWORD code;
        DWORD flags;
        CertificateFault certificate;
    };
    constexpr Row kRows[] = {
        {ERROR_WINHTTP_SECURE_FAILURE, WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID,
         CertificateFault::Date},
        {ERROR_WINHTTP_SECURE_FAILURE, WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID,
         CertificateFault::Host},
        {ERROR_WINHTTP_SECURE_FAILURE, WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA,
         CertificateFault::Issuer},
        {ERROR_WINHTTP_SECURE_FAILURE, WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED,
         CertificateFault::Revoked},
        {ERROR_WINHTTP_SECURE_FAILURE,
         WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID | WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA,
         CertificateFault::Issuer},
        {ERROR_WINHTTP_SECURE_FAILURE, WINHTTP_CALLBACK_STATUS_FLAG_CERT_REV_FAILED,
         CertificateFault::Unconfirmed},
        {ERROR_WINHTTP_SECURE_FAILURE,
         WINHTTP_CALLBACK_STATUS_FLAG_CERT_REV_FAILED |
             WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID,
         CertificateFault::Date},
        {ERROR_WINHTTP_SECURE_CERT_REV_FAILED, 0, CertificateFault::Unconfirmed},
        {ERROR_WINHTTP_SECURE_CERT_REVOKED, 0, CertificateFault::Revoked},
        {ERROR_WINHTTP_SECURE_FAILURE, 0, CertificateFault::Other},
        {ERROR_WINHTTP_SECURE_CHANNEL_ERROR, 0, CertificateFault::Other},
        {ERROR_WINHTTP_SECURE_CERT_DATE_INVALID, 0, CertificateFault::Date},
        {ERROR_WINHTTP_SECURE_CERT_CN_INVALID, 0, CertificateFault::Host},
        {ERROR_WINHTTP_SECURE_INVALID_CA, 0, CertificateFault::Issuer},
    };
    for (const Row& row : kRows) {
        const HttpError error = HttpErrorFor(row.code, row.flags);
        EXPECT_EQ(HttpFault::Certificate, error.fault) << row.code;
        EXPECT_EQ(row.certificate, error.certificate) << row.code << " " << row.flags;
        EXPECT_EQ(row.code, error.code);
    }
}

TEST(HttpFaultsTest, KeepsTheCodeOfWhatItDoesNotKnow) {
    EXPECT_EQ(HttpFault::Failed, HttpErrorFor(ERROR_WINHTTP_INTERNAL_ERROR, 0).fault);
    EXPECT_EQ(DWORD{ERROR_WINHTTP_INTERNAL_ERROR},
              HttpErrorFor(ERROR_WINHTTP_INTERNAL_ERROR, 0).code);
    EXPECT_EQ(CertificateFault::None, HttpErrorFor(ERROR_WINHTTP_TIMEOUT, 0xFFFFFFFF).certificate);
}

} // namespace
} // namespace providers
