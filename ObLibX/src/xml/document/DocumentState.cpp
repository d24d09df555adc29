#include "ObLibX/src/xml/document/DocumentState.h"

#include <algorithm>

namespace ObLibX {
namespace {

// Makes room for the record at nextFreePos. A table whose half is no whole record, which only a
// failed allocation leaves, grows by one.
void MakeRoom(DocumentState& document) {
    const auto free = static_cast<std::uint32_t>(document.nextFreePos);
    ElementRecordTable& records = *document.records;
    if (free < records.Size()) {
        return;
    }
    if (free / 2 != 0) {
        records.Grow(free + free / 2);
    }
    if (free >= records.Size()) {
        records.Grow(free + 1);
    }
}

} // namespace

std::int32_t TakeRecord(DocumentState& document) {
    std::int32_t taken = document.deletedPos;
    if (taken != 0) {
        document.deletedPos = static_cast<std::int32_t>((*document.records)[taken].next);
    } else {
        MakeRoom(document);
        taken = document.nextFreePos++;
    }
    (*document.records)[taken] = ElementRecord{};
    return taken;
}

void SetPosition(DocumentState& document, std::int32_t parent, std::int32_t current,
                 std::int32_t child) {
    document.parentPos = parent;
    document.currentPos = current;
    document.childPos = child;
    document.nodeType = current != 0 ? kNodeElement : 0;
    document.nodeOffset = 0;
    document.nodeLength = 0;
}

void ForgetElements(DocumentState& document) noexcept {
    SetPosition(document, 0, 0, 0);
    if (document.savedPositions) {
        document.savedPositions->clear();
    }
    document.nextFreePos = 1;
    document.deletedPos = 0;
    if (document.records->Size() > 0) {
        (*document.records)[0] = ElementRecord{};
    }
}

bool IsWellFormed(const DocumentState& document) {
    if (document.Has(kDocStreamWrite)) {
        return true;
    }
    const ElementRecordTable& records = *document.records;
    const ElementRecord& root = records[0];
    if (document.Has(kDocStreamRead)) {
        return !root.Has(kRecordBad);
    }
    return !root.Has(kRecordBad) && root.firstChild != 0 && records[root.firstChild].next == 0;
}

ElementRecord& MakeStreamRecord(DocumentState& document, std::uint32_t level) {
    ElementRecordTable& records = *document.records;
    while (records.Size() <= level) {
        records.Grow(std::max(level + level / 2, level + 1));
    }
    document.nextFreePos = static_cast<std::int32_t>(level) + 1;
    ElementRecord& record = records[level];
    record = ElementRecord{};
    record.SetLevel(level);
    record.parent = level - 1;
    return record;
}

void BlankStreamRecord(DocumentState& document, std::uint32_t level) {
    ElementRecord& record = (*document.records)[level];
    const bool open = record.EndTagLength() == kStillOpen;
    record.start = 0;
    record.length = 0;
    record.SetTagLengths(0, open ? kStillOpen : 0);
}

} // namespace ObLibX
