// One upload of a run's result, with the second attempt after a name clash, and its share link.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Uploads job.ResultPath to the account of `profile` through `provider` and fills `linkText`.
// Always true. After a failure, which is shown to the user, `linkText` is left alone, and the
// result is wiped with its folder when both are the run's own; a picked archive is the user's, and
// is never renamed, moved or wiped. Sets job.Usage.UsageExpiry when the link was given days.
bool UploadAndShare(OBAttachJob& job, obcontract::CloudProvider* provider, std::wstring& linkText,
                    obcontract::ProviderProfile& profile);

} // namespace obcore
