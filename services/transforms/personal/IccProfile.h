// Whether bytes are a colour profile, which stays in every format.
#pragma once

#include "services/transforms/personal/Bytes.h"

namespace transforms::personal {

// By the signature at its fixed place: what lacks it, no colour system reads as a profile.
inline bool BeginsAsProfile(Bytes bytes) { return HasTextAt(bytes, 36, "acsp"); }

} // namespace transforms::personal
