#include "OBCore/cloud/PickedText.h"

#include <map>
#include <utility>

#include "OBCore/cloud/ProviderTexts.h"
#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"

using obcontract::CloudItem;
using obcontract::DownloadList;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcore::slots::OnDownloadList;

namespace obcore {
namespace {

using ProviderByName = std::map<std::wstring, std::wstring>; // file name, provider's display name

ProviderByName ProvidersOf(ProviderManagerHandle manager, DownloadList* list) {
    ProviderByName providers;
    ForEachItem<OnDownloadList::GetItem>(list, [&](const CloudItem& item) {
        std::wstring displayName;
        ProviderDisplayName(ProviderManager().GetProviderInstance(manager, item.profile.providerId,
                                                                  ProviderKind::Storage),
                            displayName);
        providers.insert_or_assign(TextIn(item.name), displayName);
    });
    return providers;
}

} // namespace

void FormatPickedText(ProviderManagerHandle manager, DownloadList* list, std::wstring& linkText) {
    const ProviderByName providers = ProvidersOf(manager, list);
    std::wstring text;
    for (const auto& [name, provider] : providers) text += L"||" + name;
    text += L"|||" + LoadText(TextId::PickedFrom) + L" *: |||";
    for (const auto& [name, provider] : providers) text += provider + L"||";
    linkText = std::move(text);
}

} // namespace obcore
