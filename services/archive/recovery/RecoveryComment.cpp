#include "services/archive/recovery/RecoveryComment.h"

#include "services/archive/recovery/CmsEnvelope.h"
#include "services/archive/recovery/RecoveryKey.h"

namespace obarchive {
namespace {

// For the user of an archive tool that shows comments; readers of PEM ignore it.
constexpr char kIntroduction[] = "The password of this archive can be recovered by the holder of "
                                 "the private key to certificate ";

std::string Base64Of(const DerBytes& bytes) {
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD length = 0;
    if (!CryptBinaryToStringA(bytes.data(), size, CRYPT_STRING_BASE64, nullptr, &length)) return {};
    std::string text(length, '\0');
    if (!CryptBinaryToStringA(bytes.data(), size, CRYPT_STRING_BASE64, text.data(), &length)) {
        return {};
    }
    text.resize(length); // without the NUL
    return text;
}

std::string CommentFor(PCCERT_CONTEXT certificate, const Secret& password) {
    const auto message = SealForCertificate(certificate, password.Text());
    const std::string lines = message ? Base64Of(*message) : std::string();
    if (lines.empty()) return {};
    return kIntroduction + KeyText(certificate) + ".\r\n-----BEGIN CMS-----\r\n" + lines +
           "-----END CMS-----\r\n";
}

bool IsKeyOf(PCCERT_CONTEXT certificate, const std::wstring& key) {
    const std::string text = KeyText(certificate);
    return !text.empty() && key == std::wstring(text.begin(), text.end());
}

} // namespace

bool AddRecovery(ZipJob& job) {
    if (!job.recoveryAsked) return true;
    UniqueCertificate certificate;
    if (LoadRecoveryCertificate(certificate) != RecoveryKeyResult::Usable) return false;
    if (!IsKeyOf(certificate.Get(), job.recoveryKey)) return false;
    if (job.encryptionMethod != 0) {
        std::string comment = CommentFor(certificate.Get(), job.password);
        if (job.password.Empty() || comment.empty()) return false;
        job.comment = std::move(comment);
    }
    job.recoveryAsked = false;
    return true;
}

} // namespace obarchive
