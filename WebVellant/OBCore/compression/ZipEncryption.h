// The encryption settings of a zip context.
#pragma once

#include <string>

#include "OBCore/compression/UniqueZipContext.h"
#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Sets the encryption of `context` as the job wants it, and asks for the password when it encrypts;
// `folder` is the run's own. False when the run stops here:
// - the public key can't be used: a box reports it; the context is left alive, the folder stays;
// - the user gave no password: the folder is removed and the context ended, without a message.
bool SetUpEncryption(OBAttachJob& job, UniqueZipContext& context, const std::wstring& folder);

} // namespace obcore
