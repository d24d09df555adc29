// Checked narrowing of numbers.
#pragma once

#include <cstdint>

#include "ObLib/Src/ObFatal.h"

namespace ObLib {

// The value as 32 bits; a value that doesn't fit ends the process. The source and the line in the
// message are always the same, whatever the caller.
inline std::int32_t CheckedInt32(std::int64_t value) {
    if (value != static_cast<std::int32_t>(value)) AssertFailed(L"ObLib\\Src\\ObMacro.H", 232);
    return static_cast<std::int32_t>(value);
}

} // namespace ObLib
