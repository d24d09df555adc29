#include "services/archive/crypto/Ae2Algorithms.h"

#include <mbedtls/aesni.h>

#include "services/archive/crypto/CngAe2.h"
#include "services/archive/crypto/SoftwareAe2.h"
#include "services/archive/policy/EncryptionRules.h"

namespace obarchive {

Cryptography CryptographyToUse() {
    const bool approvedOnly = ReadFipsSetting() != FipsSetting::NotAsked;
    // Without the instructions, the library's cipher uses tables. That is slower, and other
    // programs of the machine can learn a little about the key from the time of each lookup.
    const bool instructions = mbedtls_aesni_has_support(MBEDTLS_AESNI_AES) != 0;
    return approvedOnly || !instructions ? Cryptography::System : Cryptography::Library;
}

std::unique_ptr<Ae2Algorithms> MakeAe2Algorithms(Cryptography maker) {
    if (maker == Cryptography::Library) return std::make_unique<SoftwareAe2>();
    auto system = std::make_unique<CngAe2>();
    return system->IsThere() ? std::move(system) : nullptr;
}

} // namespace obarchive
