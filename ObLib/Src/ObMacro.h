// Checked narrowing of numbers.
#pragma once

#include <cstdint>

#include "ObLib/Src/ObFatal.h"

namespace ObLib {

// The value as 32 bits; one that doesn't fit ends the process. The source and the line of the
// message are fixed, wherever it is called from.
inline std::int32_t CheckedInt32(std::int64_t value) {
    if (value != static_cast<std::int32_t>(value)) AssertFailed(L"ObLib\\Src\\ObMacro.H", 232);
    return static_cast<std::int32_t>(value);
}

} // namespace ObLib
