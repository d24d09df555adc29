// The steps of one upload: where the file goes, and the transfer itself.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// The local time to the second, as 14 digits from the year on.
std::wstring LocalTimeStamp();

// Puts the folder on the cloud for a file that is uploaded now into `folder`: below the account's
// root folder, if it has one, and named after the local time to the second.
void MakeTargetFolder(obcontract::CloudProvider* provider, std::wstring& folder,
                      const obcontract::ProviderProfile& profile);

// Adds the job's result to `list`, in a target folder of its own where the provider has folders.
void AddAttachmentToUploadList(const OBAttachJob& job, obcontract::CloudProvider* provider,
                               obcontract::UploadList* list,
                               const obcontract::ProviderProfile& profile);

// Uploads what `list` has, in the provider's own progress window, which is modal to `owner`. Blocks
// until the transfer has ended; the provider calls its callback meanwhile. Returns what the
// provider returned.
bool RunUploadWithProgress(obcontract::CloudProvider* provider, obcontract::UploadList* list,
                           HWND owner);

} // namespace obcore
