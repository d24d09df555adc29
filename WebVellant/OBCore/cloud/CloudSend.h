// Sending a result to a cloud account, so that a link goes into the mail.
#pragma once

#include <cstdint>
#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Uploads the job's result, `totalSize` bytes, to the account of `profile` and fills `linkText`.
// Logs the account in if it has to, and lets the user choose another account when that fails or
// the account has no room; `profile` is then the one that was used.
//
// False only when links are forbidden for this request, and the zip then stays an attachment;
// `linkText` is left alone. True in every other case: `linkText` is emptied first, and stays empty
// when the user stopped or a failure was shown. On the dialog's thread, which is blocked; boxes and
// windows are owned by job.ParentWindow.
bool RunCloudSend(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize,
                  obcontract::ProviderProfile& profile);

} // namespace obcore
