// The system's calls that this library makes, as plain functions, so that no header of the system
// is included here. Windows and other platforms have a source of this header each.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace ObLibX {

// ---- Texts

// MultiByteToWideChar with flags 0. Null `out` counts. Units, 0 on failure.
std::int32_t SystemToWide(std::uint32_t codePage, const char* in, std::int32_t length, wchar_t* out,
                          std::int32_t capacity);
// WideCharToMultiByte with flags 0; `usedDefault` may be null. Bytes, 0 on failure.
std::int32_t SystemFromWide(std::uint32_t codePage, const wchar_t* in, std::int32_t length,
                            char* out, std::int32_t capacity, std::int32_t* usedDefault);
// The ANSI code page of the system.
std::uint32_t SystemCodePage();
// The calling thread's last error, and the system's message for an error: at most 100 units,
// inserts ignored, line ends as the system writes them; empty when there is no message.
std::uint32_t SystemLastError();
std::wstring SystemErrorText(std::uint32_t error);

// ---- Files, for which each platform's C library has calls of its own

// Opens a file in binary mode. For writing the file is made, or emptied. The caller closes the
// file. Null on failure, with the last error set.
std::FILE* OpenFileStream(const wchar_t* path, bool forWriting);
// Bytes of a file that was just opened; -1 on failure.
std::int64_t FileStreamLength(std::FILE* file);

} // namespace ObLibX
