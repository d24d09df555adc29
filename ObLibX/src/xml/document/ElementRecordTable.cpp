#include "ObLibX/src/xml/document/ElementRecordTable.h"

#include <algorithm>
#include <memory>

namespace ObLibX {
namespace {

using Records = std::unique_ptr<ElementRecord[]>;

// Not initialised: the code that takes a record sets it.
Records NewSegment(std::uint32_t records) { return Records(new ElementRecord[records]); }

} // namespace

ElementRecordTable::~ElementRecordTable() { Clear(); }

void ElementRecordTable::Clear() noexcept {
    for (std::uint32_t base = 0; base < size_; base += kSegmentRecords) {
        delete[] segments_[base >> 16];
    }
    delete[] segments_;
    segments_ = nullptr;
    size_ = 0;
    segmentCapacity_ = 0;
}

void ElementRecordTable::Grow(std::uint32_t newSize) {
    if (newSize <= size_) {
        return;
    }
    const std::uint32_t last = size_ == 0 ? 0 : size_ - 1;
    const std::uint32_t lastSegment = last >> 16;
    if ((newSize - 1) >> 16 > lastSegment + 1) {
        newSize = (last & ~0xFFFFu) + 2 * kSegmentRecords;
    }
    const std::uint32_t target = (newSize - 1) >> 16;
    // Everything is allocated before anything is changed.
    std::unique_ptr<ElementRecord*[]> pointers;
    if (target >= segmentCapacity_) {
        pointers.reset(new ElementRecord* [target * 2 + 4] {});
    }
    Records filled; // the present last segment at full size, when another follows it
    if (target != lastSegment && size_ < target * kSegmentRecords) {
        filled = NewSegment(kSegmentRecords);
    }
    Records added = NewSegment(newSize - target * kSegmentRecords);

    if (pointers) {
        std::copy_n(segments_, size_ == 0 ? 0 : lastSegment + 1, pointers.get());
        delete[] segments_;
        segments_ = pointers.release();
        segmentCapacity_ = target * 2 + 4;
    }
    const std::uint32_t inLast = size_ - lastSegment * kSegmentRecords;
    Records& enlarged = target == lastSegment ? added : filled;
    if (enlarged) {
        Records old(segments_[lastSegment]);
        std::copy_n(old.get(), inLast, enlarged.get());
        segments_[lastSegment] = enlarged.release();
    }
    if (target != lastSegment) {
        segments_[target] = added.release();
    }
    size_ = newSize;
}

} // namespace ObLibX
