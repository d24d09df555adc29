#include "OBCore/planning/CloudRoute.h"

#include <windows.h>

#include "OBCore/chooser/SelectDefaultCloudDialog.h"
#include "OBCore/cloud/CloudSend.h"
#include "OBCore/files/Paths.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/usage/UsageEvents.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

using obcontract::kNoProvider;
using obcontract::ProviderKind;
using obcontract::ProviderProfile;

namespace obcore {
namespace {

constexpr DWORD kSizeQueryAccess = FILE_READ_EA; // 8: enough to ask for the size

// A file that vanished or can't be opened counts as empty: by size alone it is never uploaded.
std::int64_t FileSize(const std::wstring& path) {
    const ObLib::UniqueKernelHandle file(CreateFileW(ExtendedPath(path).c_str(), kSizeQueryAccess,
                                                     FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                                                     nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.Get(), &size)) return 0;
    return size.QuadPart;
}

// The threshold is signed: in bytes, 2048 megabytes and more are negative, which every size
// exceeds.
bool GoesToCloud(const OBAttachJob& job, std::int64_t totalSize) {
    if (job.SendSetting == SendSettingKind::Always) return true;
    return job.SendSetting == SendSettingKind::WhenLarger &&
           totalSize > static_cast<std::int32_t>(job.MinimumSizeBytes);
}

ProviderProfile DefaultProfile(const OBAttachJob& job) {
    ProviderProfile profile{};
    ProviderManager().GetDefaultStorageProvider(job.OwnedProviderManager, &profile);
    return profile;
}

bool IsUsable(const OBAttachJob& job, const ProviderProfile& profile) {
    return profile.providerId != kNoProvider &&
           ProviderManager().IsProviderSupport(job.OwnedProviderManager, profile.providerId,
                                               ProviderKind::Storage) != 0;
}

enum class Destination { Attachment, Cloud, Nowhere };

Destination FindDestination(OBAttachJob& job) {
    if (IsUsable(job, DefaultProfile(job))) return Destination::Cloud;
    if (job.CloudServicesUnavailable()) return Destination::Attachment;
    // Links are forbidden for this request: the send refuses, for which no account is needed.
    if (job.UploadBlocked) return Destination::Cloud;
    // The choice counts by what it left in the record, however the dialog was closed.
    ShowSelectDefaultCloudDialog(job.ParentWindow, job);
    return IsUsable(job, job.SelectedStorageProvider) ? Destination::Cloud : Destination::Nowhere;
}

int Attach(const OBAttachJob& job) {
    ReportUsage(job);
    return 1;
}

int Upload(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize) {
    ProviderProfile profile = job.SelectedStorageProvider.providerId != kNoProvider
                                  ? job.SelectedStorageProvider
                                  : DefaultProfile(job);
    // Links are forbidden for this request: the archive is attached, and no report is sent for it.
    if (!RunCloudSend(job, linkText, totalSize, profile)) return 1;
    job.Usage.UsageLink = true;
    ReportUsage(job);
    return 0;
}

} // namespace

int RouteArchive(OBAttachJob& job, std::wstring& linkText) {
    const std::int64_t totalSize = FileSize(job.ResultPath);
    if (!GoesToCloud(job, totalSize)) return Attach(job);
    switch (FindDestination(job)) {
    case Destination::Attachment:
        return Attach(job);
    case Destination::Cloud:
        return Upload(job, linkText, totalSize);
    case Destination::Nowhere:
        break;
    }
    return 0;
}

} // namespace obcore
