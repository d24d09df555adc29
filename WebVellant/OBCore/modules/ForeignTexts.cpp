#include "OBCore/modules/ForeignTexts.h"

#include <cwchar>
#include <iterator>

#include "OBCore/modules/ProviderLibrary.h"

using obcontract::CloudProvider;
using obcontract::ProviderKind;

namespace obcore {

std::wstring TextIn(std::span<const wchar_t> buffer) {
    return std::wstring(buffer.data(), wcsnlen(buffer.data(), buffer.size()));
}

std::wstring DisplayNameOf(CloudProvider* provider) {
    wchar_t name[128] = {};
    std::uint32_t capacity = std::size(name);
    slots::OnCloudProvider::GetDisplayName::Call(provider, ProviderKind::Storage, name, &capacity);
    return TextIn(name);
}

} // namespace obcore
