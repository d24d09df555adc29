// Chooses who encrypts entries: the system's cryptography or the library that is linked here.
#pragma once

#include <memory>

#include "services/archive/crypto/Ae2Primitives.h"

namespace obarchive {

enum class Cryptography {
    System,  // the platform's own, for who may use nothing else
    Library, // linked here: several times as fast, by the processor's own instructions
};

// The system's where approved algorithms are asked for, by policy or by the system's own switch,
// and where the processor has no instructions for the cipher; else the library's.
Cryptography CryptographyToUse();

// Null when the system's aren't there.
std::unique_ptr<Ae2Algorithms> MakeAe2Algorithms(Cryptography maker);

} // namespace obarchive
