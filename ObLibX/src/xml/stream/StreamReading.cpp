#include "ObLibX/src/xml/stream/StreamReading.h"

#include <algorithm>
#include <utility>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/XmlPath.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "ObLibX/src/xml/scan/TagScanner.h"

namespace ObLibX {
namespace {

ElementRecord& RecordOf(DocumentState& document, std::uint32_t level) {
    return (*document.records)[level];
}

// A scanner that continues at the stream's place. The caller sets the place again afterwards.
TagScanner TakePlace(DocumentState& document) {
    TagScanner scanner(document.text.data(), document.text.size(), document.docFlags);
    scanner.cursor = std::exchange(document.channel->cursor, TextFileChannel::kPlaceLost);
    scanner.channel = document.channel.get();
    scanner.reports = document.result.size() < kReportLimit;
    return scanner;
}

std::wstring_view TokenOf(const TagScanner& scanner) {
    return {scanner.Token(), static_cast<std::size_t>(scanner.TokenLength())};
}

void TagTooLong(DocumentState& document, const wchar_t* type, std::int32_t offset) {
    RecordOf(document, 0).flagsAndLevel |= kRecordBad;
    Report(document.result, L"tag_too_long", type, kReportType, offset);
}

void WriteRecord(DocumentState& document, std::uint32_t level, const NodeScan& scan) {
    ElementRecord& record = MakeStreamRecord(document, level);
    const bool open = (scan.flags & kScanEmptyTag) == 0;
    record.start = static_cast<std::uint32_t>(scan.start);
    record.length = static_cast<std::uint32_t>(scan.length);
    record.SetTagLengths(record.length, open ? kStillOpen : 0);
    if (record.length > kLongestStartTag) {
        record.flagsAndLevel |= kRecordBad;
        TagTooLong(document, L"start_tag", scan.start);
    }
}

void NoteError(DocumentState& document, const NodeScan& scan, std::int32_t nodeType) {
    RecordOf(document, 0).flagsAndLevel |= kRecordBad;
    document.nodeType = nodeType;
    document.nodeOffset = scan.start;
    document.nodeLength = scan.length;
}

void NoteUnended(DocumentState& document, std::wstring_view name, std::int32_t endTag) {
    RecordOf(document, 0).flagsAndLevel |= kRecordBad;
    Report(document.result, L"unended_start_tag", std::wstring(name).c_str(), 0, -1, endTag);
}

// One search: reads node by node and counts how many steps of the path the open elements match.
class StreamSearch {
public:
    StreamSearch(DocumentState& document, const XmlPath& path)
        : document_(document), channel_(*document.channel), tags_(channel_.openTags), path_(path),
          entered_(static_cast<std::uint32_t>(document.parentPos)),
          afterOther_(document.currentPos != 0 || document.nodeLength != 0),
          bounded_(path.Type() == PathType::Any || path.Type() == PathType::Relative) {}

    bool Run();

private:
    enum class Verdict { GoOn, Found, Over };

    void LetGo();
    void KeepOpenParent();
    void Begin();
    bool OpenTagMeets(std::uint32_t depth, const PathStep& step) const;
    Verdict Step(TagScanner& scanner);
    Verdict StartTag(const TagScanner& scanner, const NodeScan& scan);
    bool IsWanted(std::uint32_t level, std::wstring_view name);
    bool MatchesStep(std::uint32_t level, std::wstring_view name, const PathStep& step);
    bool IsTheOneCounted(std::uint32_t level, std::wstring_view name, const PathStep& step);
    std::uint32_t CountAt(std::uint32_t depth, std::wstring_view name) const;
    Verdict EndTag(const TagScanner& scanner, const NodeScan& scan);
    Verdict EndOfText(const NodeScan& scan);
    void Ended();

    DocumentState& document_;
    TextFileChannel& channel_;
    StreamTagStack& tags_;
    const XmlPath& path_;
    const std::uint32_t entered_; // the level of the parent
    const bool afterOther_;       // the search begins after an element or a node
    const bool bounded_;          // the parent's end tag ends the search
    std::uint32_t base_ = 0;      // the first step is matched one level below this depth
    std::size_t matched_ = 0;     // steps that the open elements below base_ match
    std::uint32_t passed_ = 0;    // siblings of the first step's name up to the present element
    std::uint32_t metBelow_ = 0;  // matches of a search below, so far
};

bool StreamSearch::Run() {
    LetGo();
    if (channel_.cursor == TextFileChannel::kPlaceLost) return false;
    if (bounded_ && tags_.Depth() < entered_) return false;
    Begin();
    TagScanner scanner = TakePlace(document_);
    Verdict verdict = Verdict::GoOn;
    while (verdict == Verdict::GoOn) verdict = Step(scanner);
    channel_.cursor = scanner.cursor;
    return verdict == Verdict::Found;
}

// Gives up the element that was found before, as the window moves past it.
void StreamSearch::LetGo() {
    const std::int32_t last = document_.nextFreePos - 1;
    if (last > 0) BlankStreamRecord(document_, static_cast<std::uint32_t>(last));
    document_.nextFreePos = document_.parentPos + 1;
    SetPosition(document_, document_.parentPos, 0, 0);
    KeepOpenParent();
}

// When the search goes past the parent's end, the position moves to the innermost open ancestor.
void StreamSearch::KeepOpenParent() {
    if (bounded_) return;
    document_.parentPos = std::min(document_.parentPos, static_cast<std::int32_t>(tags_.Depth()));
}

// Counts the steps that the open elements match already. A relative search that begins after an
// element ignores the elements that are open below the parent, as they are part of that element.
void StreamSearch::Begin() {
    if (path_.Type() == PathType::Relative) {
        base_ = entered_;
        if (afterOther_) passed_ = CountAt(base_, path_[0].name);
    }
    const bool below = path_.Type() == PathType::Relative && !afterOther_;
    if (path_.Type() != PathType::Absolute && !below) return;
    for (std::uint32_t depth = base_ + 1; depth <= tags_.Depth(); ++depth, ++matched_) {
        if (matched_ + 1 >= path_.StepCount() || !OpenTagMeets(depth, path_[matched_])) return;
    }
}

// For an element that began before the search only the name and the count are known.
bool StreamSearch::OpenTagMeets(std::uint32_t depth, const PathStep& step) const {
    const std::wstring_view name = tags_.NameAt(depth);
    if (!PathStep::IsAnyName(step.name) && !tags_.IsNamed(depth, step.name)) return false;
    if (step.test == StepTest::None) return true;
    return step.test == StepTest::Count &&
           CountAt(depth - 1, PathStep::IsAnyName(step.name) ? step.name : name) == step.count;
}

StreamSearch::Verdict StreamSearch::Step(TagScanner& scanner) {
    NodeScan scan;
    switch (scanner.NextNode(scan)) {
    case kNodeElement:
        return StartTag(scanner, scan);
    case kNodeEndTag:
        return EndTag(scanner, scan);
    case kNodeScanError:
        NoteError(document_, scan, kNodeError);
        if (document_.result.size() < kReportLimit) document_.result += scan.report;
        return Verdict::Over;
    case kNodeEndOfText:
        return EndOfText(scan);
    default:
        return Verdict::GoOn;
    }
}

StreamSearch::Verdict StreamSearch::StartTag(const TagScanner& scanner, const NodeScan& scan) {
    const std::wstring_view name = TokenOf(scanner);
    const std::uint32_t level = tags_.Depth() + 1;
    WriteRecord(document_, level, scan);
    tags_.Push(name);
    const bool found = IsWanted(level, name);
    if ((scan.flags & kScanEmptyTag) != 0) Ended();
    if (!found) {
        BlankStreamRecord(document_, level);
        return Verdict::GoOn;
    }
    const auto position = static_cast<std::int32_t>(level);
    SetPosition(document_, position - 1, position, 0);
    return Verdict::Found;
}

bool StreamSearch::IsWanted(std::uint32_t level, std::wstring_view name) {
    const auto position = static_cast<std::int32_t>(level);
    switch (path_.Type()) {
    case PathType::Any:
        return level == entered_ + 1;
    case PathType::Below:
        return Matches(document_, position, path_[0]) &&
               (path_[0].test != StepTest::Count || ++metBelow_ == path_[0].count);
    default:
        break;
    }
    if (level != base_ + matched_ + 1 || matched_ == path_.StepCount()) return false;
    if (!MatchesStep(level, name, path_[matched_])) return false;
    ++matched_;
    return matched_ == path_.StepCount() &&
           (path_.Attribute().empty() || HasAttribute(document_, position, path_.Attribute()));
}

bool StreamSearch::MatchesStep(std::uint32_t level, std::wstring_view name, const PathStep& step) {
    return Matches(document_, static_cast<std::int32_t>(level), step) &&
           (step.test != StepTest::Count || IsTheOneCounted(level, name, step));
}

// The first step of a relative path counts from after the present element.
bool StreamSearch::IsTheOneCounted(std::uint32_t level, std::wstring_view name,
                                   const PathStep& step) {
    const bool fromHere = path_.Type() == PathType::Relative && matched_ == 0;
    const std::uint32_t yet = fromHere ? passed_ : 0;
    return CountAt(level - 1, PathStep::IsAnyName(step.name) ? step.name : name) - yet ==
           step.count;
}

std::uint32_t StreamSearch::CountAt(std::uint32_t depth, std::wstring_view name) const {
    return PathStep::IsAnyName(name) ? tags_.CountAllChildren(depth)
                                     : tags_.CountChildren(depth, name);
}

StreamSearch::Verdict StreamSearch::EndTag(const TagScanner& scanner, const NodeScan& scan) {
    const std::uint32_t found = tags_.FindOpen(TokenOf(scanner));
    if (found == 0) {
        NoteError(document_, scan, kNodeLoneEndTag);
        Report(document_.result, L"lone_end_tag", std::wstring(TokenOf(scanner)).c_str(), 0,
               scan.start);
        return Verdict::Over;
    }
    while (tags_.Depth() > found) {
        NoteUnended(document_, tags_.NameAt(tags_.Depth()), scan.start + 1);
        Ended();
    }
    Ended();
    if (scan.length > static_cast<std::int32_t>(kLongestEndTag)) {
        TagTooLong(document_, L"end_tag", scan.start);
    }
    return bounded_ && tags_.Depth() < entered_ ? Verdict::Over : Verdict::GoOn;
}

// The innermost open element has ended.
void StreamSearch::Ended() {
    tags_.Pop();
    const std::uint32_t below = tags_.Depth() > base_ ? tags_.Depth() - base_ : 0;
    matched_ = std::min<std::size_t>(matched_, below);
    KeepOpenParent();
}

StreamSearch::Verdict StreamSearch::EndOfText(const NodeScan& scan) {
    while (tags_.Depth() != 0) {
        NoteUnended(document_, tags_.NameAt(tags_.Depth()), scan.start);
        Ended();
    }
    if (!channel_.ended && !document_.text.empty()) {
        channel_.ended = true;
        const std::uint32_t roots = tags_.CountAllChildren(0);
        if (roots == 0) Report(document_.result, L"no_root_element", nullptr, 0);
        if (roots > 1) Report(document_.result, L"root_has_sibling", nullptr, 0);
    }
    return Verdict::Over;
}

// Finds the next node that isn't part of an element's data.
std::int32_t SkipData(DocumentState& document, TagScanner& scanner, NodeScan& scan) {
    for (;;) {
        const std::int32_t type = scanner.NextNode(scan);
        if (type == kNodeElement || type == kNodeEndTag || type == kNodeEndOfText) return type;
        if (type != kNodeScanError) continue;
        RecordOf(document, 0).flagsAndLevel |= kRecordBad;
        if (document.result.size() < kReportLimit) document.result += scan.report;
        scanner.reports = document.result.size() < kReportLimit;
    }
}

// Reads up to the end tag of the innermost open element, whose start stays in the window. True when
// the end tag was read; the record then has the element's numbers.
bool ReadToEndTag(DocumentState& document, std::uint32_t level) {
    StreamTagStack& tags = document.channel->openTags;
    ElementRecord record = RecordOf(document, level);
    BlankStreamRecord(document, level); // while the window moves
    TagScanner scanner = TakePlace(document);
    scanner.preservedStart = static_cast<std::int32_t>(record.start);
    scanner.preservedLength = 1;
    NodeScan scan;
    const bool endTag = SkipData(document, scanner, scan) == kNodeEndTag;
    const bool ended = endTag && tags.IsNamed(level, TokenOf(scanner));
    record.start = static_cast<std::uint32_t>(scanner.preservedStart);
    if (ended) {
        if (scan.length > static_cast<std::int32_t>(kLongestEndTag)) {
            record.flagsAndLevel |= kRecordBad;
            TagTooLong(document, L"end_tag", scan.start);
        }
        record.length = static_cast<std::uint32_t>(scanner.cursor) - record.start;
        record.SetTagLengths(record.StartTagLength(), static_cast<std::uint32_t>(scan.length));
        tags.Pop();
    }
    RecordOf(document, level) = record;
    document.channel->cursor = ended ? scanner.cursor : scan.start;
    return ended;
}

// Whether the stream's place is still right after the element's start tag.
bool IsAfterStartTag(const DocumentState& document, std::uint32_t level) {
    const TextFileChannel& channel = *document.channel;
    return channel.cursor != TextFileChannel::kPlaceLost && level == channel.openTags.Depth() &&
           (*document.records)[level].StartTagLength() != 0;
}

} // namespace

bool FindElementInStream(DocumentState& document, const wchar_t* path) {
    const XmlPath steps(path);
    if (!PositionsAreValid(document) || steps.IsBad() || steps.HasChildTest()) return false;
    return StreamSearch(document, steps).Run();
}

bool IntoElementInStream(DocumentState& document) {
    if (!PositionsAreValid(document) || document.nodeLength != 0 || document.currentPos == 0)
        return false;
    const auto level = static_cast<std::uint32_t>(document.currentPos);
    const bool open = RecordOf(document, level).EndTagLength() == kStillOpen;
    if (!open || document.channel->openTags.Depth() < level) return false;
    SetPosition(document, document.currentPos, document.childPos, 0);
    return true;
}

bool OutOfElementInStream(DocumentState& document) {
    if (!PositionsAreValid(document) || document.parentPos == 0) return false;
    SetPosition(document, document.parentPos - 1, document.parentPos, document.currentPos);
    return true;
}

std::wstring GetTagNameInStream(const DocumentState& document) {
    const auto level = static_cast<std::uint32_t>(document.currentPos);
    const bool element = document.nodeLength == 0 && IsElement(document, document.currentPos);
    if (!element || (*document.records)[level].StartTagLength() != 0) return GetTagName(document);
    const StreamTagStack& tags = document.channel->openTags;
    return level <= tags.Depth() ? std::wstring(tags.NameAt(level)) : std::wstring();
}

std::wstring GetDataInStream(DocumentState& document, std::int32_t position) {
    if (IsCurrentNode(document, position) || !IsElement(document, position)) {
        return GetData(document, position);
    }
    const auto level = static_cast<std::uint32_t>(position);
    if (RecordOf(document, level).EndTagLength() == kStillOpen &&
        !(IsAfterStartTag(document, level) && ReadToEndTag(document, level))) {
        return {};
    }
    return GetData(document, position);
}

} // namespace ObLibX
