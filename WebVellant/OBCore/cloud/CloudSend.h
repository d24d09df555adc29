// Sending a result to a cloud account, so that a link goes into the mail.
#pragma once

#include <cstdint>
#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Uploads the job's result, `totalSize` bytes, to the account of `profile` and fills `linkText`.
// False only when links are forbidden for this request, and the zip then stays an attachment. True
// in every other case; an empty link text then means that nothing went out. This build sends
// nothing, and reports nothing: with no provider in the manager no run gets here.
bool RunCloudSend(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize,
                  obcontract::ProviderProfile& profile);

} // namespace obcore
