// The system's text calls that this room makes, as plain functions, so that no header of the system
// is included here. Windows and other platforms have a source of this header each.
#pragma once

#include <cstdint>
#include <string>

namespace ObLibX {

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

} // namespace ObLibX
