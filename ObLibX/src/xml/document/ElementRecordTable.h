// The records of a document, in segments that never move once they are full.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/ElementRecord.h"

namespace ObLibX {

// A segmented array: an index is index >> 16 (segment) and index & 0xFFFF (slot). A full segment
// has 65,536 records, 2 MiB; every one but the last is full size, and the last is exactly as long
// as the size requires. Owns its memory; one thread. New records aren't initialised.
class ElementRecordTable {
public:
    static constexpr std::uint32_t kSegmentRecords = 0x10000;

    ElementRecordTable() = default;
    ~ElementRecordTable();
    ElementRecordTable(const ElementRecordTable&) = delete;
    ElementRecordTable& operator=(const ElementRecordTable&) = delete;

    // Number of records allocated.
    std::uint32_t Size() const { return size_; }
    // Entries of the array of segment pointers.
    std::uint32_t SegmentCapacity() const { return segmentCapacity_; }

    // Allocates up to `newSize` records, but at most to the end of the segment after the present
    // last one; the caller looks at Size() and asks again. Never shrinks. Throws std::bad_alloc and
    // leaves the table as it was.
    void Grow(std::uint32_t newSize);
    // Releases every segment.
    void Clear() noexcept;

    ElementRecord& operator[](std::uint32_t index) {
        return segments_[index >> 16][index & 0xFFFF];
    }
    const ElementRecord& operator[](std::uint32_t index) const {
        return segments_[index >> 16][index & 0xFFFF];
    }

private:
    ElementRecord** segments_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint32_t segmentCapacity_ = 0;
};

} // namespace ObLibX
