// The checksum of a PNG's chunks.
#pragma once

#include "services/transforms/personal/Bytes.h"

namespace transforms::personal {

std::uint32_t Crc32(Bytes bytes);

} // namespace transforms::personal
