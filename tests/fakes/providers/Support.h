// What both files of exports share.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "contracts/ProviderManager.h"
#include "tests/fakes/providers/FakeProvider.h"
#include "tests/fakes/providers/Script.h"

// A row of the contract's table against the function of that name in this file.
#define FAKE_CHECK_ENTRY(name, result, arguments)                                                  \
    static_assert(                                                                                 \
        std::is_same_v<decltype(&name), decltype(obcontract::ProviderManagerEntries::name)>);

namespace fakes {

// What the script has for a provider and kind, or whether it is one of its storage providers.
inline bool IsScriptedAsSupported(std::uint32_t providerId, obcontract::ProviderKind kind) {
    const std::wstring key = L"IsProviderSupport." + std::to_wstring(providerId);
    const bool listed = kind == obcontract::ProviderKind::Storage && ProviderOfId(providerId);
    return ScriptedCount(key + L'.' + Describe(kind), ScriptedCount(key, listed)) != 0;
}

} // namespace fakes
