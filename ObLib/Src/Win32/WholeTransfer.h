// Reading and writing all of a buffer, on handles that may return less.
#pragma once

#include <windows.h>

#include <cstddef>

namespace ObLib {

// Reads exactly `size` bytes. False at the end of the file or pipe, also in the middle, and on any
// failure; the buffer's content is then not defined.
inline bool ReadWhole(HANDLE from, void* buffer, std::size_t size) noexcept {
    auto* at = static_cast<std::byte*>(buffer);
    while (size > 0) {
        constexpr std::size_t kMost = 1u << 30;
        DWORD read = 0;
        const auto wanted = static_cast<DWORD>(size < kMost ? size : kMost);
        if (!ReadFile(from, at, wanted, &read, nullptr) || read == 0) return false;
        at += read;
        size -= read;
    }
    return true;
}

// Writes all of the buffer. False on any failure, when a part may have been written.
inline bool WriteWhole(HANDLE to, const void* buffer, std::size_t size) noexcept {
    const auto* at = static_cast<const std::byte*>(buffer);
    while (size > 0) {
        constexpr std::size_t kMost = 1u << 30;
        DWORD written = 0;
        const auto wanted = static_cast<DWORD>(size < kMost ? size : kMost);
        if (!WriteFile(to, at, wanted, &written, nullptr) || written == 0) return false;
        at += written;
        size -= written;
    }
    return true;
}

} // namespace ObLib
