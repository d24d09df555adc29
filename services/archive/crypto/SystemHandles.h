// Owners of the system's cryptography.
#pragma once

#include <windows.h>

#include <bcrypt.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obarchive {

struct AlgorithmPolicy : ObLib::NullPolicy<BCRYPT_ALG_HANDLE> {
    static void Close(Handle handle) noexcept { BCryptCloseAlgorithmProvider(handle, 0); }
};
struct CipherKeyPolicy : ObLib::NullPolicy<BCRYPT_KEY_HANDLE> {
    static void Close(Handle handle) noexcept { BCryptDestroyKey(handle); }
};
struct HashPolicy : ObLib::NullPolicy<BCRYPT_HASH_HANDLE> {
    static void Close(Handle handle) noexcept { BCryptDestroyHash(handle); }
};
using UniqueAlgorithm = ObLib::UniqueResource<AlgorithmPolicy>;
using UniqueCipherKey = ObLib::UniqueResource<CipherKeyPolicy>;
using UniqueHash = ObLib::UniqueResource<HashPolicy>;

} // namespace obarchive
