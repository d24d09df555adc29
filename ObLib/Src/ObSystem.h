// The few calls of the system that strings make, behind plain functions: no header of the system is
// seen here. The Windows side and the one of the native build are two sources of this header.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ObLib {

// In which encoding 8-bit bytes are. Any other value counts as `kCodePageOem`; 2 is refused by the
// caller.
enum CodePageKind : std::int32_t { kCodePageOem = 0, kCodePageAnsi = 1, kCodePageUtf8 = 3 };

// Converts `length` bytes; null `out` counts. Units, 0 on failure. Any thread.
std::int32_t SystemBytesToWide(std::int32_t kind, const char* bytes, std::int32_t length,
                               wchar_t* out, std::int32_t capacity);

// The text `id` of the string table of the language module that is set for the process, or of the
// program's own module when that one has none (or isn't set). Points into the module, isn't
// NUL-ended, lives as long as the module; null with `length` 0 when neither has it. An empty entry
// of the table is no text. Any thread.
const wchar_t* SystemTableText(std::uint32_t id, std::size_t& length);

} // namespace ObLib
