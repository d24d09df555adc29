#include "OBCore/cloud/ShareUploaded.h"

#include "OBCore/cloud/CloudAssertions.h"
#include "OBCore/cloud/ProviderTexts.h"
#include "OBCore/cloud/ShareText.h"
#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "ObLib/Src/Win32/ScopeExit.h"

using obcontract::CloudItem;
using obcontract::CloudProvider;
using obcontract::DownloadList;
using obcontract::UploadList;
using obcore::slots::OnCloudProvider;
using obcore::slots::OnDownloadList;
using obcore::slots::OnUploadList;

namespace obcore {
namespace {

void CopyItems(UploadList* from, DownloadList* to) {
    ForEachItem<OnUploadList::GetItem>(
        from, [to](const CloudItem& item) { OnDownloadList::AddItem::Call(to, &item); });
}

} // namespace

void ShareUploaded(CloudProvider* provider, UploadList* uploaded, std::wstring& linkText,
                   std::int32_t days) {
    DownloadList* list = OnCloudProvider::CreateDownloadList::Call(provider);
    // Without a list there is nothing to call: the share has failed.
    if (!Check(list != nullptr, "download_list != NULL", kCloudSource, 266)) return;
    const ObLib::ScopeExit destroyed([provider, list]() noexcept {
        OnCloudProvider::DestroyDownloadList::Call(provider, list);
    });
    CopyItems(uploaded, list);
    if (!OnCloudProvider::ShareItems::Call(provider, list)) return;
    std::wstring displayName;
    ProviderDisplayName(provider, displayName);
    FormatShareText(list, displayName, days, linkText);
}

} // namespace obcore
