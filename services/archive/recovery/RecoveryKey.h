// The administrator's certificate for the recovery of passwords: read from the policy, and checked.
// docs/recovery.md documents it for administrators.
#pragma once

#include <windows.h>

#include <wincrypt.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obarchive {

struct CertificatePolicy : ObLib::NullPolicy<PCCERT_CONTEXT> {
    static void Close(Handle certificate) noexcept { CertFreeCertificateContext(certificate); }
};
using UniqueCertificate = ObLib::UniqueResource<CertificatePolicy>;

// What GetPublicKeyResult returns. 1 is the contract's success.
enum class RecoveryKeyResult : std::uint32_t {
    Absent = 0, // the policy has no certificate
    Usable = 1,
    Damaged = 2,     // neither PEM nor the Base64 of a certificate
    OutOfDate = 3,   // not yet or no longer valid by this machine's clock
    Unsuitable = 4,  // no RSA key, one of less than 2048 bits, or one not meant for encryption
    NoRoom = 5,      // the caller's buffer is too small
    Unexpected = 60, // an exception reached the export's edge
};

// Whether the policy asks for recovery, also by a certificate that can't be used.
bool IsRecoverySetUp();

// Reads the policy's certificate; `certificate` is filled on Usable only. Any thread.
RecoveryKeyResult LoadRecoveryCertificate(UniqueCertificate& certificate);

// "sha256:" and the digest of the certificate in lower-case hexadecimal; empty when the system
// can't compute it. The product passes this text on as the public key. It identifies the
// certificate, so that a run encrypts for the very one that its options were loaded with.
std::string KeyText(PCCERT_CONTEXT certificate);

// Writes the key text of the policy's certificate with its NUL. On every result but Usable the
// buffer contains an empty text, if it has room for one.
RecoveryKeyResult ReadRecoveryKey(char* buffer, std::uint32_t capacity);

} // namespace obarchive
