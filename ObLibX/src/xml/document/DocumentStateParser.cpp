// Reads a text into the records of its elements.
#include "ObLibX/src/xml/document/DocumentState.h"

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "ObLibX/src/xml/scan/OpenTagStack.h"
#include "ObLibX/src/xml/scan/TagScanner.h"

namespace ObLibX {
namespace {

constexpr std::uint32_t kUnitsPerRecord = 64; // of an ordinary document
constexpr std::uint32_t kRecordsAtLeast = 8;

// One run over a text. The tags that are open are on the stack; current_ is the record of the
// innermost one.
class Parser {
public:
    Parser(DocumentState& document, std::uint32_t parent)
        : document_(document), records_(*document.records),
          scanner_(document.text.data(), document.text.size(), document.docFlags), parent_(parent),
          current_(parent) {}

    std::uint32_t Run();

private:
    void StartTag(const NodeScan& scan);
    void Link(std::uint32_t child);
    void ScanError(const NodeScan& scan);
    bool EndTag(const NodeScan& scan);
    bool FindOpenTag(std::uint32_t& found) const;
    void Close(const NodeScan& scan);
    void LoneEndTag(const NodeScan& scan);
    void EndOfText();
    void HandUp(std::uint32_t depth, std::int32_t endTag);
    void MarkUnended(std::uint32_t depth, std::int32_t endTag);
    void Flatten(std::uint32_t depth);
    void LeaveOpen(std::int32_t stop);
    void TagTooLong(std::uint32_t element, const wchar_t* type, std::int32_t offset);
    bool Reports() const { return document_.result.size() < kReportLimit; }
    std::uint32_t ParentOf(std::uint32_t depth) const {
        return depth == 0 ? parent_ : stack_.At(depth - 1).record;
    }

    DocumentState& document_;
    ElementRecordTable& records_;
    TagScanner scanner_;
    OpenTagStack stack_;
    const std::uint32_t parent_;
    std::uint32_t current_;
    std::uint32_t first_ = 0;
};

std::uint32_t Parser::Run() {
    NodeScan scan;
    for (bool goesOn = true; goesOn;) {
        scanner_.reports = Reports();
        switch (scanner_.NextNode(scan)) {
        case kNodeElement:
            StartTag(scan);
            break;
        case kNodeScanError:
            ScanError(scan);
            break;
        case kNodeEndTag:
            goesOn = EndTag(scan);
            break;
        case kNodeEndOfText:
            EndOfText();
            goesOn = false;
            break;
        default: // text, comments and the rest have no record
            break;
        }
    }
    return first_;
}

void Parser::StartTag(const NodeScan& scan) {
    const auto taken = static_cast<std::uint32_t>(TakeRecord(document_));
    ElementRecord& record = records_[taken];
    record.start = static_cast<std::uint32_t>(scan.start);
    record.length = static_cast<std::uint32_t>(scan.length);
    record.SetTagLengths(record.length, 0);
    record.SetLevel(records_[parent_].Level() + stack_.Depth() + 1);
    Link(taken);
    if (record.length > kLongestStartTag) {
        TagTooLong(taken, L"start_tag", scan.start);
    }
    if ((scan.flags & kScanEmptyTag) == 0) {
        stack_.Push({scanner_.Token(), static_cast<std::size_t>(scanner_.TokenLength())}, taken);
        current_ = taken;
    }
}

// Links `child` as the last child of the innermost open element. The first child's `prev` is the
// last child.
void Parser::Link(std::uint32_t child) {
    ElementRecord& record = records_[child];
    ElementRecord& parent = records_[current_];
    record.parent = current_;
    if (current_ == parent_ && first_ == 0) {
        first_ = child;
    }
    if (parent.firstChild == 0) {
        parent.firstChild = child;
        record.prev = child;
        record.flagsAndLevel |= kRecordFirstSibling;
        return;
    }
    ElementRecord& first = records_[parent.firstChild];
    record.prev = first.prev;
    records_[first.prev].next = child;
    first.prev = child;
}

void Parser::ScanError(const NodeScan& scan) {
    records_[0].flagsAndLevel |= kRecordBad;
    records_[current_].flagsAndLevel |= kRecordBadBelow;
    if (Reports()) {
        document_.result += scan.report;
    }
}

// False when the parsing stops here.
bool Parser::EndTag(const NodeScan& scan) {
    std::uint32_t found = 0;
    if (!FindOpenTag(found)) {
        LoneEndTag(scan);
        return false;
    }
    const bool onTop = found + 1 == stack_.Depth();
    if (!onTop) {
        HandUp(found + 1, scan.start + 1);
    }
    Close(scan);
    if (!onTop) {
        LeaveOpen(scan.start + scan.length);
    }
    return onTop;
}

// Finds the innermost open tag that has the end tag's name.
bool Parser::FindOpenTag(std::uint32_t& found) const {
    for (std::uint32_t depth = stack_.Depth(); depth-- > 0;) {
        const std::wstring_view name = stack_.NameAt(depth);
        if (scanner_.TokenIs(name.data(), name.size())) {
            found = depth;
            return true;
        }
    }
    return false;
}

// Reads the end tag of the innermost open element.
void Parser::Close(const NodeScan& scan) {
    ElementRecord& record = records_[current_];
    const auto endTag = static_cast<std::uint32_t>(scan.length);
    record.length = static_cast<std::uint32_t>(scan.start) + endTag - record.start;
    record.SetTagLengths(record.StartTagLength(), endTag);
    if (endTag > kLongestEndTag) {
        TagTooLong(current_, L"end_tag", scan.start);
    }
    stack_.Pop();
    current_ = record.parent;
}

void Parser::LoneEndTag(const NodeScan& scan) {
    records_[0].flagsAndLevel |= kRecordBad;
    records_[current_].flagsAndLevel |= kRecordBadBelow;
    if (Reports()) {
        const std::wstring name(scanner_.Token(), scanner_.TokenLength());
        Report(document_.result, L"lone_end_tag", name.c_str(), 0, scan.start);
    }
    LeaveOpen(scan.start);
}

void Parser::EndOfText() { HandUp(0, scanner_.textLength); }

// Handles the open elements from `depth` inwards, none of which has an end tag; `endTag` is the
// offset at which one was expected.
void Parser::HandUp(std::uint32_t depth, std::int32_t endTag) {
    if (depth == stack_.Depth()) {
        return;
    }
    MarkUnended(depth, endTag);
    Flatten(depth);
    while (stack_.Depth() > depth) {
        stack_.Pop();
    }
    current_ = ParentOf(depth);
}

// From the innermost element outwards.
void Parser::MarkUnended(std::uint32_t depth, std::int32_t endTag) {
    records_[0].flagsAndLevel |= kRecordBad;
    for (std::uint32_t at = stack_.Depth(); at-- > depth;) {
        ElementRecord& record = records_[stack_.At(at).record];
        record.SetTagLengths(record.StartTagLength(), 0);
        record.length = record.StartTagLength();
        record.flagsAndLevel = (record.flagsAndLevel & ~kRecordBadBelow) | kRecordUnended;
        if (Reports()) {
            const std::wstring name(stack_.NameAt(at));
            Report(document_.result, L"unended_start_tag", name.c_str(), 0,
                   static_cast<std::int32_t>(record.start), endTag);
        }
    }
    records_[ParentOf(depth)].flagsAndLevel |= kRecordBadBelow;
}

// Makes the children of each unended element its following siblings. Every such element but the
// innermost is the last child of its parent, so that their child lists only have to be joined,
// below the parent of the outermost element. Each child is visited once, whatever its depth.
void Parser::Flatten(std::uint32_t depth) {
    const std::uint32_t parent = ParentOf(depth);
    std::uint32_t last = stack_.At(depth).record;
    for (std::uint32_t at = depth; at < stack_.Depth(); ++at) {
        const std::uint32_t unended = stack_.At(at).record;
        const std::uint32_t firstChild = records_[unended].firstChild;
        if (firstChild == 0) {
            continue; // the innermost
        }
        records_[unended].firstChild = 0;
        records_[unended].next = firstChild;
        last = records_[firstChild].prev;
        records_[firstChild].prev = unended;
        records_[firstChild].flagsAndLevel &= ~kRecordFirstSibling;
        for (std::uint32_t child = firstChild; child != 0; child = records_[child].next) {
            records_[child].parent = parent;
        }
    }
    records_[records_[parent].firstChild].prev = last;
}

// Called where the parsing stops early. The elements that are open keep their children and end at
// `stop`; their end tags, if there are any, were not read.
void Parser::LeaveOpen(std::int32_t stop) {
    for (std::uint32_t at = 0; at < stack_.Depth(); ++at) {
        ElementRecord& record = records_[stack_.At(at).record];
        record.length = static_cast<std::uint32_t>(stop) - record.start;
        record.flagsAndLevel |= kRecordUnended;
    }
}

// Marks an element one of whose tags is longer than its record can describe. The element stays.
void Parser::TagTooLong(std::uint32_t element, const wchar_t* type, std::int32_t offset) {
    records_[0].flagsAndLevel |= kRecordBad;
    records_[element].flagsAndLevel |= kRecordBad;
    records_[records_[element].parent].flagsAndLevel |= kRecordBadBelow;
    Report(document_.result, L"tag_too_long", type, kReportType, offset);
}

// Reads all elements and reports what is wrong with the document as a whole.
void ParseAll(DocumentState& document) {
    const std::uint32_t first = Parser(document, 0).Run();
    ElementRecord& root = (*document.records)[0];
    root.length = static_cast<std::uint32_t>(document.text.size());
    root.firstChild = first;
    if (first == 0) {
        Report(document.result, L"no_root_element", nullptr, 0);
    } else if ((*document.records)[first].next != 0) {
        Report(document.result, L"root_has_sibling", nullptr, 0);
    }
    SetPosition(document, 0, 0, 0);
}

} // namespace

void IndexElements(DocumentState& document) {
    ForgetElements(document);
    ElementRecordTable& records = *document.records;
    records.Grow(static_cast<std::uint32_t>(document.text.size()) / kUnitsPerRecord +
                 kRecordsAtLeast);
    records[0] = ElementRecord{};
    if (document.text.empty()) {
        return;
    }
    try {
        ParseAll(document);
    } catch (...) {
        ForgetElements(document);
        throw;
    }
}

} // namespace ObLibX
