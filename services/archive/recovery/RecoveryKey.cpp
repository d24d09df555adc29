#include "services/archive/recovery/RecoveryKey.h"

#include <bcrypt.h>

#include <cstring>
#include <vector>

#include "services/archive/policy/PolicyValues.h"

namespace obarchive {
namespace {

constexpr wchar_t kCertificateValue[] = L"EntX509Certificate";
constexpr char kKeyPrefix[] = "sha256:";
constexpr DWORD kLeastKeyBits = 2048;
constexpr std::size_t kDigestSize = 32;

// In the same order as the product: where the 64-bit view has the key of the policies, only that
// view counts, also when it has no certificate.
std::wstring CertificateText() {
    const bool in64 = HasPolicies(PolicyView::Bits64);
    return PolicyTextIn(in64 ? PolicyView::Bits64 : PolicyView::Bits32, kCertificateValue);
}

// PEM with its two lines, or the Base64 alone; line breaks and blanks may be anywhere in it.
std::vector<BYTE> Decoded(const std::wstring& text) {
    for (const DWORD form : {CRYPT_STRING_BASE64HEADER, CRYPT_STRING_BASE64}) {
        const auto length = static_cast<DWORD>(text.size());
        DWORD size = 0;
        if (!CryptStringToBinaryW(text.c_str(), length, form, nullptr, &size, nullptr, nullptr)) {
            continue;
        }
        std::vector<BYTE> bytes(size);
        if (CryptStringToBinaryW(text.c_str(), length, form, bytes.data(), &size, nullptr,
                                 nullptr)) {
            return bytes;
        }
    }
    return {};
}

// Its issuer may have restricted the key, to signatures for example; the holder's tool may then
// refuse to open a message. Without the extension the key may be used for everything.
bool MayEncipherKeys(CERT_INFO& info) {
    if (!CertFindExtension(szOID_KEY_USAGE, info.cExtension, info.rgExtension)) return true;
    BYTE usage = 0;
    return CertGetIntendedKeyUsage(X509_ASN_ENCODING, &info, &usage, sizeof usage) &&
           (usage & CERT_KEY_ENCIPHERMENT_KEY_USAGE);
}

bool HasSuitableKey(PCCERT_CONTEXT certificate) {
    CERT_PUBLIC_KEY_INFO& key = certificate->pCertInfo->SubjectPublicKeyInfo;
    const bool rsa = std::strcmp(key.Algorithm.pszObjId, szOID_RSA_RSA) == 0;
    return rsa && MayEncipherKeys(*certificate->pCertInfo) &&
           CertGetPublicKeyLength(X509_ASN_ENCODING, &key) >= kLeastKeyBits;
}

} // namespace

bool IsRecoverySetUp() { return !CertificateText().empty(); }

RecoveryKeyResult LoadRecoveryCertificate(UniqueCertificate& certificate) {
    const std::wstring text = CertificateText();
    if (text.empty()) return RecoveryKeyResult::Absent;
    const std::vector<BYTE> bytes = Decoded(text);
    UniqueCertificate read(CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(),
                                                        static_cast<DWORD>(bytes.size())));
    if (!read) return RecoveryKeyResult::Damaged;
    if (CertVerifyTimeValidity(nullptr, read.Get()->pCertInfo) != 0) {
        return RecoveryKeyResult::OutOfDate;
    }
    if (!HasSuitableKey(read.Get())) return RecoveryKeyResult::Unsuitable;
    certificate = std::move(read);
    return RecoveryKeyResult::Usable;
}

std::string KeyText(PCCERT_CONTEXT certificate) {
    constexpr char kHex[] = "0123456789abcdef";
    BYTE digest[kDigestSize];
    DWORD size = kDigestSize;
    if (!CryptHashCertificate2(BCRYPT_SHA256_ALGORITHM, 0, nullptr, certificate->pbCertEncoded,
                               certificate->cbCertEncoded, digest, &size)) {
        return {};
    }
    std::string text = kKeyPrefix;
    for (const BYTE byte : digest) {
        text += kHex[byte >> 4];
        text += kHex[byte & 15];
    }
    return text;
}

RecoveryKeyResult ReadRecoveryKey(char* buffer, std::uint32_t capacity) {
    if (!buffer || capacity == 0) return RecoveryKeyResult::NoRoom;
    buffer[0] = '\0';
    UniqueCertificate certificate;
    const RecoveryKeyResult result = LoadRecoveryCertificate(certificate);
    if (result != RecoveryKeyResult::Usable) return result;
    const std::string text = KeyText(certificate.Get());
    if (text.empty()) return RecoveryKeyResult::Unexpected;
    if (text.size() >= capacity) return RecoveryKeyResult::NoRoom;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return RecoveryKeyResult::Usable;
}

} // namespace obarchive
