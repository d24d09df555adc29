#include "OBCore/cloud/ProviderTexts.h"

#include "OBCore/cloud/CloudAssertions.h"
#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"

using obcontract::CloudProvider;

namespace obcore {
namespace {

constexpr std::uint64_t kErrorCapacity = 2048; // wide characters

} // namespace

void ProviderDisplayName(CloudProvider* provider, std::wstring& name) {
    name.clear();
    if (!CheckProvider(provider, 41)) return;
    name = DisplayNameOf(provider);
}

void ShowProviderError(const OBAttachJob& job, CloudProvider* provider, const wchar_t* accountKey) {
    wchar_t text[kErrorCapacity] = {};
    std::uint64_t capacity = kErrorCapacity;
    ProviderManager().GetLastErrorOfProvider(provider, accountKey, job.ResultName.c_str(), text,
                                             &capacity);
    ShowMessage(job.ParentWindow, TextIn(text).c_str());
}

} // namespace obcore
