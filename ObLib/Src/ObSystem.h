// The system's calls that strings make, as plain functions, so that no header of the system is
// included here. Windows and the native build have a source of this header each.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ObLib {

// The encoding of 8-bit bytes. Any other value means `kCodePageOem`; the caller refuses 2.
enum CodePageKind : std::int32_t { kCodePageOem = 0, kCodePageAnsi = 1, kCodePageUtf8 = 3 };

// Converts `length` bytes; with a null `out` it only counts. Returns units, 0 on failure. Any
// thread.
std::int32_t SystemBytesToWide(std::int32_t kind, const char* bytes, std::int32_t length,
                               wchar_t* out, std::int32_t capacity);

// The text `id` of the string table of the process's language module, or of the program's module
// when the language module has no such text or isn't set. The text is in the module, isn't
// NUL-ended, and is valid as long as the module. Null with `length` 0 when neither module has the
// text. An empty entry of a table is no text. Any thread.
const wchar_t* SystemTableText(std::uint32_t id, std::size_t& length);

} // namespace ObLib
