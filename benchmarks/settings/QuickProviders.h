// A provider manager in this program, in place of the module: it answers out of memory, so that
// what is measured isn't its own work.
#pragma once

#include <cstdint>

#include "contracts/ProviderManager.h"

namespace bench {

inline constexpr int kProviders = 10;
inline constexpr int kAccountsOfEach = 16;

// The label of an account, the same each time.
void CopyLabel(int provider, int account, wchar_t (&label)[51]);

// The picture of every provider, of `size` pixels; the caller owns it.
HBITMAP MakePicture(int size);

} // namespace bench
