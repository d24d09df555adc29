// What the machine's policies say about encryption. docs/policies.md tells administrators the same.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obarchive {

// Mask of the method bits that may be used; 0 when the administrator allows none. A mask in both
// views allows what both allow. The switch for all encryption isn't in it: callers that find the
// mask empty ask no further, and nobody would read why there is no encryption.
std::uint16_t AllowedMethods();

// The administrator's choice if it is allowed, else the strongest that is; 0 when none is.
std::uint16_t DefaultMethod();

enum class FipsSetting : std::uint32_t {
    NotAsked = 0,
    AskedByPolicy = 1, // the product's own policy
    AskedBySystem = 2, // the system's switch for approved algorithms
};

// The algorithms are approved ones either way. Where it is asked for, they are the system's own,
// too, which may be certified; otherwise the faster ones that are linked here.
FipsSetting ReadFipsSetting();

// When encryption is switched off, or no method is allowed: tells so in a message box, modal to
// `owner` (null, or a window of any process) on the calling thread, and returns true. Otherwise
// false, at once.
bool TellIfEncryptionIsOff(HWND owner);

} // namespace obarchive
