// The archive's comment from which the administrator recovers the password.
#pragma once

#include "services/archive/zip/ZipJob.h"

namespace obarchive {

// Carries out what was asked of `job` by SetPublicKeyResult and SetPublicKeyW: seals its password
// for the policy's certificate into the comment and marks recovery as done. True also when nothing
// was asked, and when nothing is encrypted and so nothing is there to recover. False when the key
// isn't the one of the policy's certificate as it stands now, when that can't be used any more, or
// when the system refuses; the job is then left as it is, and a run refuses it. Any thread.
bool AddRecovery(ZipJob& job);

} // namespace obarchive
