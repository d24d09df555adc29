// Takes over what a suite wrote, if it is a whole PDF.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/CallWait.h"

namespace providers {

enum class TakenPdf : std::uint8_t {
    Taken,
    NotWhole,   // the file can't be read to its end
    Unwritable, // the target can't be written, as on a full disk
    Ended,      // the call was to end
};

// Whether the file begins and ends as a PDF does.
bool IsWholePdf(HANDLE file);

// The file at `path`, for reading, if it is a whole PDF; empty otherwise.
ObLib::UniqueKernelHandle OpenWholePdf(const std::wstring& path);

// Copies the whole of the file `made` into the empty file `target`; `wait` is asked before each
// part. Throws std::bad_alloc.
TakenPdf TakePdf(HANDLE made, HANDLE target, CallWait& wait);

} // namespace providers
