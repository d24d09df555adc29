#include "ObLibX/src/xml/stream/StreamRecords.h"

#include <algorithm>

namespace ObLibX {

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
