// The index of a document: where each element is in the text, eight 32-bit words an element, in
// segments that never move once they are full.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ObLibX/src/xml/scan/DocumentConstants.h"

namespace ObLibX {

// Bits of ElementRecord::flagsAndLevel above the depth in the tree.
inline constexpr std::uint32_t kRecordFree = 0x20000;         // on the free list
inline constexpr std::uint32_t kRecordFirstSibling = 0x80000; // the first child of its parent
inline constexpr std::uint32_t kRecordUnended = 0x100000;     // a start tag with no end tag
inline constexpr std::uint32_t kRecordBadBelow = 0x200000;    // an element below is badly formed
inline constexpr std::uint32_t kRecordBad = 0x800000; // this element, or for record 0 the document
inline constexpr std::uint32_t kRecordLevelMask = 0xFFFF;

// One element. Record 0 is the root pseudo-element: its `length` is the document's, its
// `firstChild` the root element, and its start tag length is 0, by which a loop over parents
// recognises it.
struct ElementRecord {
    std::uint32_t start;  // offset in units of the '<' of the start tag
    std::uint32_t length; // units from `start` to the end of the end tag
    std::uint32_t
        tagLengths; // low 22 bits: start tag; high 10 bits: end tag, 0 for an empty element
    std::uint32_t flagsAndLevel; // low 16 bits: depth; flags above
    std::uint32_t parent;        // index of the parent's record
    std::uint32_t firstChild;    // 0 = none
    std::uint32_t next;          // next sibling, 0 = last; in a freed record the next freed one
    std::uint32_t prev;          // previous sibling; the first child's is the last child

    std::uint32_t StartTagLength() const { return tagLengths & kLongestStartTag; }
    std::uint32_t EndTagLength() const { return tagLengths >> 22; }
    std::uint32_t Level() const { return flagsAndLevel & kRecordLevelMask; }
    bool Has(std::uint32_t flag) const { return (flagsAndLevel & flag) != 0; }

    // A length that is too large for its field becomes the field's highest value; it never wraps.
    void SetTagLengths(std::uint32_t startTag, std::uint32_t endTag) {
        tagLengths = (startTag < kLongestStartTag ? startTag : kLongestStartTag) |
                     (endTag < kLongestEndTag ? endTag : kLongestEndTag) << 22;
    }
    // A depth over 65,535 stays at 65,535, so that it never reaches the flags.
    void SetLevel(std::uint32_t level) {
        flagsAndLevel = (flagsAndLevel & ~kRecordLevelMask) |
                        (level < kRecordLevelMask ? level : kRecordLevelMask);
    }
};
static_assert(sizeof(ElementRecord) == 32);
static_assert(offsetof(ElementRecord, tagLengths) == 8 &&
              offsetof(ElementRecord, flagsAndLevel) == 12);
static_assert(offsetof(ElementRecord, parent) == 16 && offsetof(ElementRecord, prev) == 28);

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
    // last one; the caller checks Size() and calls again. Never shrinks. Throws std::bad_alloc and
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
