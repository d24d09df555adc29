// Turning the files of a run into one zip in a temporary folder of its own.
#pragma once

#include "OBCore/options/OBAttachJob.h"

namespace obcore::CompressUtils {

// Zips job.Files, and encrypts when AutoEncrypt is on, asking for the password; blocks the calling
// dialog thread for its whole length. LoadArchiveService() must have succeeded.
//
// True when the caller may go on: the zip is complete and the job's result fields name it, or
// neither SendItem nor AutoEncrypt is on. False when there is nothing to name, the user stopped, or
// the run failed; a failure has then been shown to the user. The zip's folder outlives the run:
// CleanupFolder names it on success; after a failed engine run or an unusable public key it stays.
bool CompressFiles(OBAttachJob& job);

} // namespace obcore::CompressUtils
