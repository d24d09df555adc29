// A message that only the holder of one certificate's private key can decrypt: a CMS enveloped
// message (RFC 5652), which ordinary tools read.
#pragma once

#include <windows.h>

#include <wincrypt.h>

#include <optional>
#include <string_view>

#include "services/archive/recovery/DerWriter.h"

namespace obarchive {

// Returns the message in DER, or nothing when the system refuses a step. AES-256-CBC encrypts the
// secret under a random key of this message alone; the certificate's RSA key encrypts that key with
// PKCS #1 padding. The system does the cryptography. This component writes the structure around it,
// because not every supported system can write messages with this content encryption. Any thread;
// the keys and the plain text are wiped.
std::optional<DerBytes> SealForCertificate(PCCERT_CONTEXT certificate, std::string_view secret);

} // namespace obarchive
