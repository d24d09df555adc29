#include "OBCore/cloud/CloudSend.h"

#include <algorithm>
#include <optional>

#include "OBCore/chooser/SelectDefaultCloudDialog.h"
#include "OBCore/cloud/CloudAssertions.h"
#include "OBCore/cloud/ProviderTexts.h"
#include "OBCore/cloud/UploadAndShare.h"
#include "OBCore/modules/ProviderLibrary.h"

using namespace obcontract; // most names of the contract's storage half
using obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

CloudProvider* InstanceOf(const OBAttachJob& job, const ProviderProfile& profile) {
    return ProviderManager().GetProviderInstance(job.OwnedProviderManager, profile.providerId,
                                                 ProviderKind::Storage);
}

// False when the user has chosen nothing, which ends the send.
bool ChooseOther(OBAttachJob& job, ProviderProfile& profile) {
    if (!ShowSelectDefaultCloudDialog(job.ParentWindow, job)) return false;
    profile = job.SelectedStorageProvider;
    return true;
}

// The newest account is the last one. Without any, the profile stays as it is.
void TakeNewestAccount(const OBAttachJob& job, CloudProvider* provider, ProviderProfile& profile) {
    ProviderProfile accounts[kAccountCapacity] = {};
    const std::int32_t count =
        OnCloudProvider::GetAccountProfiles::Call(provider, accounts, kAccountCapacity);
    if (count <= 0) return;
    const ProviderProfile& newest = accounts[std::min<std::uint32_t>(count, kAccountCapacity) - 1];
    if (newest.providerId == kNoProvider) return; // a count that the array doesn't bear out
    profile = newest;
    ProviderManager().SetDefaultStorageProvider(job.OwnedProviderManager, &profile);
}

bool IsLoggedIn(CloudProvider* provider, const ProviderProfile& profile) {
    return OnCloudProvider::IsAccountLoggedIn::Call(provider, profile.accountKey) != 0;
}

bool LogIn(const OBAttachJob& job, CloudProvider* provider, ProviderProfile& profile) {
    if (!ProviderManager().Login2(job.OwnedProviderManager, provider, profile.accountKey,
                                  profile.accountLabel, job.ParentWindow)) {
        return false;
    }
    if (profile.accountKey[0] == L'\0') TakeNewestAccount(job, provider, profile);
    return true;
}

// The instance through which the upload goes: that of the profile as it was on entry, also when
// the user has chosen another account after a failed login. Where the manager has no such instance,
// that of the choice. Nothing when the user has chosen nothing.
std::optional<CloudProvider*> LoggedInInstance(OBAttachJob& job, ProviderProfile& profile) {
    CloudProvider* provider = InstanceOf(job, profile);
    if (CheckProvider(provider, 401)) {
        if (IsLoggedIn(provider, profile) || LogIn(job, provider, profile)) return provider;
    }
    if (!ChooseOther(job, profile)) return std::nullopt;
    return provider ? provider : InstanceOf(job, profile);
}

// Only the low 32 bits of the size take part: a file of a little more than 4 GiB passes.
bool HasTooLittleSpace(CloudProvider* provider, const wchar_t* accountKey, std::int64_t totalSize) {
    if (!OnCloudProvider::HasCapability::Call(provider, ProviderKind::Storage,
                                              ProviderCapability::FreeSpace)) {
        return false;
    }
    std::int64_t freeBytes = 0;
    std::int64_t totalBytes = 0;
    const bool isKnown =
        OnCloudProvider::GetAccountSpace::Call(provider, accountKey, &freeBytes, &totalBytes) != 0;
    // Whatever the call returned.
    if (freeBytes == SizeUnknown && totalBytes == SizeUnknown) return false;
    return isKnown && (freeBytes < 0 || static_cast<std::uint32_t>(totalSize) > freeBytes);
}

// The error code of the limit that the file exceeds, 0 without one.
std::uint32_t ExceededLimit(CloudProvider* provider, const wchar_t* accountKey,
                            std::int64_t totalSize) {
    const std::uint64_t most = OnCloudProvider::GetMaxFileSize::Call(provider, accountKey);
    if (static_cast<std::uint64_t>(totalSize) > most) return ProviderErrorTooLarge;
    return HasTooLittleSpace(provider, accountKey, totalSize) ? ProviderErrorQuota : 0;
}

// Checks the limits of the profile's account until one is chosen that has room. `kept`, through
// which the upload goes and which words the error, changes with each further choice.
bool FindRoom(OBAttachJob& job, std::int64_t totalSize, ProviderProfile& profile,
              CloudProvider*& kept) {
    for (;;) {
        CloudProvider* provider = InstanceOf(job, profile);
        if (!provider) {
            if (kept) CheckProvider(provider, 423); // else the upload reports it
            return true;
        }
        const std::uint32_t error = ExceededLimit(provider, profile.accountKey, totalSize);
        if (error == 0) return true;
        OnCloudProvider::SetLastProviderError::Call(provider, error);
        ShowProviderError(job, kept, profile.accountKey);
        if (!ChooseOther(job, profile)) return false;
        kept = InstanceOf(job, profile);
    }
}

} // namespace

bool RunCloudSend(OBAttachJob& job, std::wstring& linkText, std::int64_t totalSize,
                  ProviderProfile& profile) {
    if (job.UploadBlocked) return false;
    linkText.clear();
    if (profile.providerId == kNoProvider) return true;
    std::optional<CloudProvider*> kept = LoggedInInstance(job, profile);
    if (!kept || !FindRoom(job, totalSize, profile, *kept)) return true;
    return UploadAndShare(job, *kept, linkText, profile);
}

} // namespace obcore
