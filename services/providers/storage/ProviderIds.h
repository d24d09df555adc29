// Ids of the storage providers of this module. A saved account refers to its provider by its id, so
// an id is never given to another provider. None is among the ids that the contract treats apart.
#pragma once

#include <cstdint>

namespace providers {

inline constexpr std::uint32_t kNetworkFolderId = 101;
inline constexpr std::uint32_t kWebDavId = 102;

} // namespace providers
