#include "OBCore/cloud/CloudSend.h"

#include "OBCore/modules/ObTrace.h"

using obcontract::ProviderProfile;

namespace obcore {

// This build uploads nothing yet. It returns what a send returns that the user has cancelled, true
// with no link, so that no caller takes the files for sent. The upload goes after the first line.
bool RunCloudSend(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize,
                  ProviderProfile& profile) {
    if (job.UploadBlocked) return false;
    ObTrace("RunCloudSend: no upload of %lld bytes to provider %u",
            static_cast<long long>(totalSize), profile.providerId);
    linkText.clear();
    return true;
}

} // namespace obcore
