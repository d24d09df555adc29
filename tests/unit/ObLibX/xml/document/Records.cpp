#include "tests/unit/ObLibX/xml/document/Records.h"

#include "ObLibX/src/xml/scan/TagScanner.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

std::string Flags(const ElementRecord& record) {
    std::string flags;
    flags += record.Has(kRecordFree) ? " free" : "";
    flags += record.Has(kRecordFirstSibling) ? " first" : "";
    flags += record.Has(kRecordUnended) ? " unended" : "";
    flags += record.Has(kRecordBadBelow) ? " below" : "";
    flags += record.Has(kRecordBad) ? " bad" : "";
    return flags;
}

std::string NameOf(const std::wstring& text, const ElementRecord& record) {
    TagScanner scanner(text.data(), text.size(), 0);
    scanner.cursor = static_cast<std::int32_t>(record.start) + 1;
    scanner.NextName();
    return Narrow({scanner.Token(), static_cast<std::size_t>(scanner.TokenLength())});
}

// The children of one record.
std::string FaultsBelow(const XmlOffsetDocument& document, std::uint32_t parent,
                        std::uint32_t& seen) {
    const ElementRecordTable& records = *document.State().records;
    const std::uint32_t first = records[parent].firstChild;
    std::uint32_t last = first;
    std::uint32_t after = parent == 0 ? 0 : records[parent].start + 1;
    const std::size_t limit =
        parent == 0 ? document.Text().size() : records[parent].start + records[parent].length;
    for (std::uint32_t at = first; at != 0; at = records[at].next) {
        const ElementRecord& record = records[at];
        const std::string where = " at record " + std::to_string(at);
        ++seen;
        if (record.parent != parent) {
            return "parent" + where;
        }
        if (record.Has(kRecordFirstSibling) != (at == first)) {
            return "first sibling" + where;
        }
        if (at != first && record.prev != last) {
            return "prev" + where;
        }
        if (record.start < after || record.length < record.StartTagLength() ||
            record.start + record.length > limit) {
            return "span" + where;
        }
        if (record.Has(kRecordUnended) && !records[0].Has(kRecordBad)) {
            return "unended in a good document" + where;
        }
        after = record.start + record.length;
        last = at;
    }
    return first != 0 && records[first].prev != last ? "last child of " + std::to_string(parent)
                                                     : "";
}

} // namespace

std::string RecordsOf(const XmlOffsetDocument& document) {
    const ElementRecordTable& records = *document.State().records;
    std::string all;
    for (std::uint32_t i = 1; i < static_cast<std::uint32_t>(document.State().nextFreePos); ++i) {
        const ElementRecord& record = records[i];
        const auto number = [](std::uint32_t value) { return std::to_string(value); };
        all += NameOf(document.Text(), record) + " " + number(record.start) + "+" +
               number(record.length) + " tags " + number(record.StartTagLength()) + "/" +
               number(record.EndTagLength()) + " level " + number(record.Level()) + " parent " +
               number(record.parent) + " child " + number(record.firstChild) + " next " +
               number(record.next) + " prev " + number(record.prev) + Flags(record) + "\n";
    }
    return all;
}

std::string ReportsOf(const XmlOffsetDocument& document) {
    std::string reports = Narrow(document.Result());
    std::erase_if(reports, [](char c) { return c == '\r' || c == '\n'; });
    return reports;
}

std::string FaultsOf(const XmlOffsetDocument& document) {
    const std::uint32_t used = static_cast<std::uint32_t>(document.State().nextFreePos);
    std::uint32_t seen = 1;
    for (std::uint32_t parent = 0; parent < used; ++parent) {
        const std::string fault = FaultsBelow(document, parent, seen);
        if (!fault.empty()) {
            return fault;
        }
        if (seen > used) {
            return "a record is linked twice";
        }
    }
    return seen == used ? "" : std::to_string(used - seen) + " records aren't linked";
}

} // namespace ObLibX
