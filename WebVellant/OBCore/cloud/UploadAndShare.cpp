#include "OBCore/cloud/UploadAndShare.h"

#include <algorithm>

#include "OBCore/cloud/CloudAssertions.h"
#include "OBCore/cloud/CloudUploadCallBack.h"
#include "OBCore/cloud/OwnResult.h"
#include "OBCore/cloud/ProviderTexts.h"
#include "OBCore/cloud/ShareUploaded.h"
#include "OBCore/cloud/UploadSteps.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/usage/UsageEvents.h"
#include "ObLib/Src/Win32/ScopeExit.h"

using obcontract::CloudProvider;
using obcontract::kArchivesOnlyProvider;
using obcontract::ProviderProfile;
using obcontract::UploadList;
using obcore::slots::OnCloudProvider;
using obcore::slots::OnUploadList;

namespace obcore {
namespace {

constexpr std::int32_t kNoExpiry = -1;

// What one upload works with; all of it outlives the upload.
struct Upload {
    OBAttachJob& job;
    CloudProvider* provider;
    UploadList* list;
    const ProviderProfile& profile;
    CloudUploadCallBack& callback;
};

bool RunOnce(const Upload& upload) {
    AddAttachmentToUploadList(upload.job, upload.provider, upload.list, upload.profile);
    return RunUploadWithProgress(upload.provider, upload.list, upload.job.ParentWindow);
}

// A file of that name is in the cloud already: the time goes before the last point of the name.
void StampName(std::wstring& name) {
    name.insert(std::min(name.rfind(L'.'), name.size()), LocalTimeStamp());
}

// The second attempt goes by what the provider has called back, whatever the first one returned.
// There is no third one.
bool RunUpToTwice(const Upload& upload) {
    const bool succeeded = RunOnce(upload);
    if (upload.callback.retryWithNewName == 0) return succeeded;
    StampName(upload.job.ResultName);
    OnUploadList::ResetList::Call(upload.list, 0);
    upload.callback.retryWithNewName = 0;
    return RunOnce(upload);
}

std::int32_t ExpiryDays(const OBOptions& options) {
    const bool expires = options.ExpireFilesAvailable && options.ExpireFiles;
    return expires ? static_cast<std::int32_t>(options.S4DelExpireDays) : kNoExpiry;
}

// The use is reported before the link is asked for.
void Share(const Upload& upload, std::wstring& linkText) {
    std::wstring displayName;
    ProviderDisplayName(upload.provider, displayName);
    ReportCloudUse(displayName);
    const std::int32_t days = ExpiryDays(upload.job);
    ShareUploaded(upload.provider, upload.list, linkText, days);
    if (days >= 0) upload.job.Usage.UsageExpiry = true;
}

} // namespace

bool UploadAndShare(OBAttachJob& job, CloudProvider* provider, std::wstring& linkText,
                    ProviderProfile& profile) {
    if (!CheckProvider(provider, 329)) {
        WipeOwnResult(job);
        return true;
    }
    UploadList* list = OnCloudProvider::CreateUploadList::Call(provider, profile.accountKey);
    // Without a list there is nothing to call: the upload has failed.
    Check(list != nullptr, "upload_list != NULL", kCloudSource, 332);
    CloudUploadCallBack callback;
    OnCloudProvider::SetCallback::Call(provider, &callback);
    const ObLib::ScopeExit ended([provider, list]() noexcept {
        OnCloudProvider::ClearCallback::Call(provider);
        if (list) OnCloudProvider::DestroyUploadList::Call(provider, list);
    });
    std::wstring left; // the result under its old name, when it can't be renamed
    if (profile.providerId == kArchivesOnlyProvider) left = GiveArchiveExtension(job);
    const Upload upload{job, provider, list, profile, callback};
    if (list && RunUpToTwice(upload)) {
        Share(upload, linkText);
    } else {
        WipeOwnResult(job, left);
        ShowProviderError(job, provider, profile.accountKey);
    }
    return true;
}

} // namespace obcore
