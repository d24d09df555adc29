// The checks of this room. Support knows the source name and the lines 266 and 332, of the two
// lists; the other lines only distinguish the checks of this room.
#pragma once

#include "OBCore/modules/Messages.h"
#include "contracts/ProviderManager.h"

namespace obcore {

inline constexpr char kCloudSource[] = "OBCore\\PVXUtils";

// False after the assertion box when the manager gave no instance: nothing may be asked of it then.
inline bool CheckProvider(const obcontract::CloudProvider* provider, int line) {
    return Check(provider != nullptr, "cloud_svc != NULL", kCloudSource, line);
}

} // namespace obcore
