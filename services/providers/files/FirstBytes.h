// What a file begins with.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace providers {

// At most `most` bytes of an open file from `at` on, without moving its position; fewer at its end,
// none when it can't be read. `most` is below 2^32. Throws std::bad_alloc.
std::string BytesAt(HANDLE file, std::uint64_t at, std::size_t most);

// Those at its start.
inline std::string FirstBytes(HANDLE file, std::size_t most) { return BytesAt(file, 0, most); }

// Whether the file's first byte begins the header of a PDF, as in every PDF that this product
// makes.
bool BeginsAsPdf(HANDLE file);

} // namespace providers
