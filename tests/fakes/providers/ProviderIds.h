// The ids of the providers that this module has made, so that a call can be described without them.
#pragma once

#include <cstdint>
#include <optional>

#include "contracts/ProviderManager.h"

namespace fakes {

// A provider enters itself once and lives as long as the module.
void NoteProvider(const obcontract::CloudProvider* provider, std::uint32_t id);

// Nothing for a pointer that isn't a provider of this module.
std::optional<std::uint32_t> IdOfProvider(const obcontract::CloudProvider* provider);

} // namespace fakes
