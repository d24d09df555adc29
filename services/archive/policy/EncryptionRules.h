// The machine's policies on encryption. docs/policies.md documents them for administrators.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obarchive {

// Mask of the method bits that may be used; 0 when the administrator allows none. Where both
// views have a mask, a method must be in both. The switch for all encryption doesn't empty the
// mask: callers that find it empty call nothing else here, and the user would get no message.
std::uint16_t AllowedMethods();

// The administrator's choice if it is allowed, else the strongest that is; 0 when none is.
std::uint16_t DefaultMethod();

enum class FipsSetting : std::uint32_t {
    NotAsked = 0,
    AskedByPolicy = 1, // the product's own policy
    AskedBySystem = 2, // the system's switch for approved algorithms
};

// The algorithms are approved ones with every setting. Where approval is asked for, the system's
// own implementation of them runs, which may be certified; otherwise the faster one that is linked
// here.
FipsSetting ReadFipsSetting();

// When encryption is switched off or no method is allowed, shows a message box, modal to `owner`
// (null, or a window of any process), on the calling thread, and returns true. Otherwise returns
// false at once.
bool WarnIfEncryptionIsOff(HWND owner);

} // namespace obarchive
