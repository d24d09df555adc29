// Opening a file by a wide path and asking for its length, which each platform's C library does in
// a way of its own. Two sources of this header, as with SystemText.h.
#pragma once

#include <cstdint>
#include <cstdio>

namespace ObLibX {

// Opens a file in binary mode, for reading or, made or emptied, for writing. The caller closes it;
// null on failure, with the last error set.
std::FILE* OpenFileStream(const wchar_t* path, bool forWriting);
// Bytes of a file that was just opened; -1 on failure.
std::int64_t FileStreamLength(std::FILE* file);

} // namespace ObLibX
