#include "OBCore/cloud/ProviderTexts.h"

#include "OBCore/cloud/CloudAssertions.h"
#include "OBCore/cloud/ForeignTexts.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"

using obcontract::CloudProvider;
using obcontract::ProviderKind;
using obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

constexpr std::uint32_t kDisplayNameCapacity = 128; // wide characters
constexpr std::uint64_t kErrorCapacity = 2048;

} // namespace

void ProviderDisplayName(CloudProvider* provider, std::wstring& name) {
    name.clear();
    if (!CheckProvider(provider, 41)) return;
    wchar_t buffer[kDisplayNameCapacity] = {};
    std::uint32_t capacity = kDisplayNameCapacity;
    OnCloudProvider::GetDisplayName::Call(provider, ProviderKind::Storage, buffer, &capacity);
    name = TextIn(buffer);
}

void ShowProviderError(const OBAttachJob& job, CloudProvider* provider, const wchar_t* accountKey) {
    wchar_t text[kErrorCapacity] = {};
    std::uint64_t capacity = kErrorCapacity;
    ProviderManager().GetLastErrorOfProvider(provider, accountKey, job.ResultName.c_str(), text,
                                             &capacity);
    ShowMessage(job.ParentWindow, TextIn(text).c_str());
}

} // namespace obcore
