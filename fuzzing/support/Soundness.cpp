#include "fuzzing/support/Soundness.h"

#include "ObLibX/src/xml/document/Navigation.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

// The document lives as long as the caller.
class Soundness {
public:
    explicit Soundness(const XmlOffsetDocument& document)
        : document_(document), records_(*document.State().records), text_(document.Text()) {}

    void Check() {
        const auto used = static_cast<std::uint32_t>(document_.State().nextFreePos);
        Require(records_[0].length == text_.size(), "the root is as long as the text");
        for (std::uint32_t parent = 0; parent < used; ++parent) CheckChildren(parent, used);
        Require(seen_ + 1 == used, "every record is linked");
    }

private:
    void CheckChildren(std::uint32_t parent, std::uint32_t used) {
        const std::uint32_t first = records_[parent].firstChild;
        std::uint32_t last = 0;
        std::uint32_t end = records_[parent].start + records_[parent].StartTagLength();
        for (std::uint32_t at = first; at != 0; at = records_[at].next) {
            const ElementRecord& record = records_[at];
            Require(at < used && ++seen_ < used, "no record is linked twice");
            Require(record.parent == parent, "a child knows its parent");
            Require(record.Has(kRecordFirstSibling) == (at == first), "the first child is marked");
            Require(at == first || record.prev == last, "a sibling knows the one before");
            Require(record.Level() > records_[parent].Level(), "a child is deeper");
            Require(record.start >= end, "siblings don't overlap");
            CheckTags(record);
            end = record.start + record.length;
            last = at;
        }
        Require(first == 0 || records_[first].prev == last, "the first child knows the last");
        Require(end <= records_[parent].start + records_[parent].length, "children are inside");
    }

    void CheckTags(const ElementRecord& record) {
        const std::size_t end = std::size_t{record.start} + record.length;
        const std::uint32_t tags = record.StartTagLength() + record.EndTagLength();
        Require(end <= text_.size() && tags <= record.length, "an element is in the text");
        Require(record.StartTagLength() >= 3, "a start tag has its marks and a name");
        Require(text_[record.start] == L'<', "a start tag begins with its mark");
        Require(text_[record.start + record.StartTagLength() - 1] == L'>', "and ends with one");
        Require(record.EndTagLength() == 0 || text_[end - record.EndTagLength()] == L'<',
                "an end tag begins with its mark");
        Require(record.EndTagLength() == 0 || text_[end - 1] == L'>', "and ends with one");
        Require(!record.Has(kRecordFree), "a linked record isn't free");
    }

    const XmlOffsetDocument& document_;
    const ElementRecordTable& records_;
    const std::wstring& text_;
    std::uint32_t seen_ = 0;
};

bool SameElement(const ElementRecord& one, const ElementRecord& other) {
    return one.start == other.start && one.length == other.length &&
           one.tagLengths == other.tagLengths && one.flagsAndLevel == other.flagsAndLevel;
}

} // namespace

void RequireSoundRecords(const XmlOffsetDocument& document) { Soundness(document).Check(); }

void RequireSoundReport(const std::wstring& report) {
    if (report.empty()) return;
    XmlOffsetDocument elements;
    elements.SetText(std::wstring_view(report));
    RequireSoundRecords(elements);
    const ElementRecordTable& records = *elements.State().records;
    Require(!records[0].Has(kRecordBad), "the report is well formed");
    // The limit is checked before an addition, which can be as long again: a document type with
    // many bad declarations is one step of the scanner, and an update may lengthen an earlier
    // element.
    const std::uint32_t last = records[records[0].firstChild].prev;
    Require(records[last].start < 2 * kReportLimit, "a full report takes no more");
}

void RequireAsIndexedAnew(const XmlOffsetDocument& document) {
    XmlOffsetDocument anew;
    anew.SetFlags(document.Flags());
    anew.SetText(std::wstring_view(document.Text()));
    std::int32_t one = NextInDocumentOrder(document.State(), 0);
    std::int32_t other = NextInDocumentOrder(anew.State(), 0);
    for (; one != 0 && other != 0; one = NextInDocumentOrder(document.State(), one),
                                   other = NextInDocumentOrder(anew.State(), other)) {
        Require(SameElement((*document.State().records)[one], (*anew.State().records)[other]),
                "the shifted records are those of the text");
    }
    Require(one == 0 && other == 0, "the shifted records are as many as those of the text");
}
