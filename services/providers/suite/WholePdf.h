// Takes over what a suite wrote, if it is a whole PDF.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace providers {

enum class TakenPdf : std::uint8_t {
    Taken,
    NotWhole,   // no file, an empty one, or one that doesn't begin and end as a PDF does
    Unwritable, // the target can't be written, as on a full disk
};

// Copies the file at `path` into the empty file `target`. Throws std::bad_alloc.
TakenPdf TakeWholePdf(const std::wstring& path, HANDLE target);

} // namespace providers
