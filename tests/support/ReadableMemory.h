// A search of what this process can read, for tests that look for secrets in it.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace obtest {

inline bool IsReadable(const MEMORY_BASIC_INFORMATION& region) {
    constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY |
                                PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & kReadable) != 0 &&
           (region.Protect & (PAGE_GUARD | PAGE_NOACCESS)) == 0;
}

// Copies memory that another thread may give back at the same time: such pages are left out, their
// bytes in the copy are 0. The copy is in memory that the search below leaves out, and is wiped.
class MemoryCopy {
public:
    MemoryCopy();
    ~MemoryCopy();
    MemoryCopy(const MemoryCopy&) = delete;
    MemoryCopy& operator=(const MemoryCopy&) = delete;

    // Valid until the next call. Without memory for it the program ends.
    const std::uint8_t* Of(const MEMORY_BASIC_INFORMATION& region);
    bool IsOwn(const MEMORY_BASIC_INFORMATION& region) const {
        return copy_ && region.AllocationBase == copy_;
    }

private:
    void Free();

    std::uint8_t* copy_ = nullptr;
    std::size_t size_ = 0;
    void* handler_ = nullptr;
};

// Calls visit(region, bytes) for every readable region, in the order of their addresses; `bytes` is
// a copy of its RegionSize bytes, which are nowhere else.
template <typename Visit>
void ForEachReadableRegion(Visit visit) {
    MemoryCopy copy;
    const std::uint8_t* at = nullptr;
    MEMORY_BASIC_INFORMATION region;
    while (VirtualQuery(at, &region, sizeof region) == sizeof region) {
        at = static_cast<const std::uint8_t*>(region.BaseAddress) + region.RegionSize;
        if (!IsReadable(region) || copy.IsOwn(region)) continue;
        visit(region, copy.Of(region));
    }
}

} // namespace obtest
