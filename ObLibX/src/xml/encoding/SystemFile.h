// Opens a file by a wide path and measures it, for which each platform's C library has calls of its
// own. As with SystemText.h, each platform has a source of this header.
#pragma once

#include <cstdint>
#include <cstdio>

namespace ObLibX {

// Opens a file in binary mode. For writing the file is made, or emptied. The caller closes the
// file. Null on failure, with the last error set.
std::FILE* OpenFileStream(const wchar_t* path, bool forWriting);
// Bytes of a file that was just opened; -1 on failure.
std::int64_t FileStreamLength(std::FILE* file);

} // namespace ObLibX
