// A message that only the holder of one certificate's private key can open: a CMS enveloped message
// (RFC 5652), the form that ordinary tools of certificate holders read.
#pragma once

#include <windows.h>

#include <wincrypt.h>

#include <optional>
#include <string_view>

#include "services/archive/recovery/DerWriter.h"

namespace obarchive {

// The message in DER. The content is encrypted by AES-256-CBC under a key that is drawn for it
// alone, and that key by the certificate's RSA key with PKCS #1 padding. The cryptography is the
// system's; only the few values around it are written here, since not every system that runs this
// has messages with this content encryption. Nothing when the system refuses a step. Any thread;
// what is secret on the way is wiped.
std::optional<DerBytes> SealForCertificate(PCCERT_CONTEXT certificate, std::string_view secret);

} // namespace obarchive
