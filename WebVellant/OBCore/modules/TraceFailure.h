// How a failed call is reported where the code continues after it: by a line of the trace.
#pragma once

#include <windows.h>

#include "OBCore/modules/ObTrace.h"

namespace obcore {

// Returns `result`.
inline HRESULT TraceFailure(const char* call, HRESULT result) noexcept {
    if (FAILED(result)) ObTrace("%s failed %x", call, static_cast<unsigned>(result));
    return result;
}

} // namespace obcore
