// Sizes as the user reads them.
#pragma once

#include <cstdint>
#include <string>

namespace obcore {

// The number of bytes in the unit that suits it, in the user's language, rounded to the nearest
// digit that is shown: "4.66 GB". A negative number begins with "-". Where the system lacks the
// call that rounds, the digits after the last one are dropped. Throws std::bad_alloc.
std::wstring ByteSizeText(std::int64_t bytes);

} // namespace obcore
