#include "OBCore/cloud/PickFromCloud.h"

#include <utility>

#include "OBCore/cloud/OpenPickerProvider.h"
#include "OBCore/cloud/PickedText.h"
#include "OBCore/cloud/ProviderTexts.h"
#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/options/BrowserImage.h"
#include "OBCore/usage/UsageEvents.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"

using namespace obcontract; // most names of the contract's storage half
using obcore::slots::OnCloudProvider;
using obcore::slots::OnDownloadList;

namespace obcore {
namespace {

constexpr std::uint64_t kErrorCapacity = 2048; // wide characters

// A code of 0 is a cancel, which shows no message.
void ShowPickerError(ProviderManagerHandle manager, DownloadList* list, HWND dialog) {
    wchar_t text[kErrorCapacity] = {};
    std::uint64_t capacity = kErrorCapacity;
    if (ProviderManager().GetLastErrorCodeOfProvider(manager, list, L"", text, &capacity) != 0) {
        ShowMessage(dialog, TextIn(text).c_str());
    }
}

bool HasUsableDefault(ProviderManagerHandle manager) {
    ProviderProfile profile{};
    ProviderManager().GetDefaultStorageProvider(manager, &profile);
    return profile.providerId != kNoProvider &&
           ProviderManager().IsProviderSupport(manager, profile.providerId,
                                               ProviderKind::Storage) != 0;
}

// The first item has to do for the whole pick. The text has reported a missing instance already.
void ReportPick(ProviderManagerHandle manager, const CloudItem& first, HWND dialog) {
    CloudProvider* provider = ProviderManager().GetProviderInstance(
        manager, first.profile.providerId, ProviderKind::Storage);
    std::wstring displayName;
    if (provider) ProviderDisplayName(provider, displayName);
    const std::wstring browser = BrowserImage(dialog);
    ReportCloudUse(displayName);
    UsageFlags flags;
    flags.UsageLink = true;
    ReportFileSend(flags, browser); // the whole path here, not the short name
}

bool StorePickedText(CloudButtonHook& record, DownloadList* list, HWND dialog) {
    if (!HasUsableDefault(record.providerManager)) AdoptPickedProfile(record.providerManager, list);
    std::wstring text;
    FormatPickedText(record.providerManager, list, text);
    CloudItem first{};
    if (!OnDownloadList::GetItem::Call(list, 0, &first)) return false; // a pick of nothing
    record.linkText = std::move(text);
    // From here on the text goes out: a report that fails changes nothing.
    ObLib::RanGuarded([&] { ReportPick(record.providerManager, first, dialog); });
    return true;
}

} // namespace

void AdoptPickedProfile(ProviderManagerHandle manager, DownloadList* list) {
    CloudItem item{};
    if (!OnDownloadList::GetItem::Call(list, 0, &item)) return;
    ProviderManager().SetDefaultStorageProvider(manager, &item.profile);
}

bool PickFromCloud(CloudButtonHook& record, HWND dialog) {
    const ProviderManagerHandle manager = record.providerManager;
    CloudProvider* provider = ChooseOpenPickerProvider(manager);
    if (!provider) return false;
    DownloadList* list = OnCloudProvider::CreateDownloadList::Call(provider);
    if (!list) return false;
    const ObLib::ScopeExit deleted(
        [provider, list]() noexcept { ProviderManager().DeleteDownloadList(provider, list); });
    if (ProviderManager().GetSharedListFromOpenPicker(manager, provider, list, dialog)) {
        return StorePickedText(record, list, dialog);
    }
    ShowPickerError(manager, list, dialog);
    return false;
}

} // namespace obcore
