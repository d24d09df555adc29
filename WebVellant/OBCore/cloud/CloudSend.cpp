#include "OBCore/cloud/CloudSend.h"

#include "OBCore/modules/ObTrace.h"

using obcontract::ProviderProfile;

namespace obcore {

// This build uploads nothing yet. So that nobody takes a result for sent that wasn't, the answer is
// that of a send that the user gave up: true with no link. The upload goes after the first line.
bool RunCloudSend(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize,
                  ProviderProfile& profile) {
    if (job.UploadBlocked) return false;
    ObTrace("RunCloudSend: no upload of %lld bytes to provider %u",
            static_cast<long long>(totalSize), profile.providerId);
    linkText.clear();
    return true;
}

} // namespace obcore
