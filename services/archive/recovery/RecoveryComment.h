// The archive's comment from which the administrator recovers the password.
#pragma once

#include "services/archive/zip/ZipJob.h"

namespace obarchive {

// Carries out what SetPublicKeyResult and SetPublicKeyW asked of `job`: encrypts its password for
// the policy's certificate, writes the message into the comment and marks recovery as done. Also
// returns true when recovery wasn't asked for, and when the zip isn't encrypted. Returns false when
// the job's key isn't that of the policy's present certificate, when that certificate can't be
// used, or when the system refuses; the job stays as it is, and the run refuses it. Any thread.
bool AddRecovery(ZipJob& job);

} // namespace obarchive
