#include "benchmarks/support/Memory.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace bench {
namespace {

double BusyBytes(HANDLE heap) {
    double bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
    HeapUnlock(heap);
    return bytes;
}

bool IsWritable(DWORD protection) {
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return (protection & kWritable) != 0;
}

} // namespace

double HeapKilobytes() {
    HANDLE heaps[64] = {};
    const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
    double bytes = 0;
    for (DWORD at = 0; at < count; ++at) bytes += BusyBytes(heaps[at]);
    return bytes / 1024;
}

double PrivateBytes() {
    std::size_t total = 0;
    MEMORY_BASIC_INFORMATION region{};
    const std::uint8_t* place = nullptr;
    while (VirtualQuery(place, &region, sizeof(region)) != 0) {
        const bool own = region.Type == MEM_PRIVATE || IsWritable(region.Protect);
        if (region.State == MEM_COMMIT && own) total += region.RegionSize;
        place = static_cast<const std::uint8_t*>(region.BaseAddress) + region.RegionSize;
    }
    return static_cast<double>(total);
}

} // namespace bench
