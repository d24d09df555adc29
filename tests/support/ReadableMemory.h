// A walk over what this process can read, for tests that look for secrets in it.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obtest {

inline bool IsReadable(const MEMORY_BASIC_INFORMATION& region) {
    constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY |
                                PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & kReadable) != 0 &&
           (region.Protect & (PAGE_GUARD | PAGE_NOACCESS)) == 0;
}

// Calls visit(region) for every readable region, in the order of their addresses. Copies nothing of
// what is there.
template <typename Visit>
void ForEachReadableRegion(Visit visit) {
    const std::uint8_t* at = nullptr;
    MEMORY_BASIC_INFORMATION region;
    while (VirtualQuery(at, &region, sizeof region) == sizeof region) {
        at = static_cast<const std::uint8_t*>(region.BaseAddress) + region.RegionSize;
        if (IsReadable(region)) visit(region);
    }
}

} // namespace obtest
