// Packing and unpacking of the parts of a zip.
#pragma once

#include <optional>

#include "services/transforms/personal/Bytes.h"

namespace transforms::documents {

// Unpacks to exactly `size` bytes. Nothing when the packed bytes are no whole stream of that size
// or go on after its end. Throws std::bad_alloc.
std::optional<personal::OwnedBytes> Inflate(personal::Bytes packed, std::size_t size);

// Throws std::bad_alloc.
personal::OwnedBytes Deflate(personal::Bytes plain);

// The checksum that a zip stores of a part.
std::uint32_t ChecksumOf(personal::Bytes plain);

} // namespace transforms::documents
