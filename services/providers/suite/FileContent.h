// Copies what is in a file between open handles.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "ObLib/Src/Win32/WholeTransfer.h"

namespace providers {

enum class CopiedContent : std::uint8_t { Whole, Unreadable, Unwritable, Ended };

// Writes the whole of `source`, from its start, to where `target` is. `isEnded` is asked before
// each part. Throws std::bad_alloc.
template <class IsEnded>
CopiedContent CopyContent(HANDLE source, HANDLE target, IsEnded isEnded) {
    std::vector<char> part(std::size_t{1} << 18);
    for (std::uint64_t at = 0;;) {
        if (isEnded()) return CopiedContent::Ended;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(at);
        place.OffsetHigh = static_cast<DWORD>(at >> 32);
        DWORD read = 0;
        if (!ReadFile(source, part.data(), static_cast<DWORD>(part.size()), &read, &place) &&
            GetLastError() != ERROR_HANDLE_EOF) {
            return CopiedContent::Unreadable;
        }
        if (read == 0) return CopiedContent::Whole;
        if (!ObLib::WriteWhole(target, part.data(), read)) return CopiedContent::Unwritable;
        at += read;
    }
}

} // namespace providers
