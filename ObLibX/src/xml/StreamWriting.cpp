#include "ObLibX/src/xml/StreamWriting.h"

#include "ObLibX/src/xml/DocumentReport.h"
#include "ObLibX/src/xml/Editing.h"
#include "ObLibX/src/xml/ElementText.h"
#include "ObLibX/src/xml/NewElement.h"
#include "ObLibX/src/xml/StreamRecords.h"
#include "ObLibX/src/xml/XmlOffsetDocument.h"

namespace ObLibX {
namespace {

constexpr std::uint32_t kNoWayBack = kAddAtStart | kAddBefore | kAddAsChild;

ElementRecord& RecordOf(DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}

// Whether the current element is still a single tag at the end of the text, so that it can be
// entered.
bool IsSingleTag(const DocumentState& document) {
    const ElementRecord& record = (*document.records)[document.currentPos];
    return record.StartTagLength() != 0 && record.StartTagLength() == record.length;
}

// Units behind the current element: its line end or nothing.
std::size_t LineEndBehind(const DocumentState& document) {
    return document.channel->lineEndBehind ? kLineEnd.size() : 0;
}

// Sends the first `length` units of the text to the file. False after a file error; they stay.
bool Send(DocumentState& document, std::size_t length, bool flush) {
    TextFileChannel& channel = *document.channel;
    if (channel.WriteOut(document.text.data(), static_cast<std::int32_t>(length), flush)) {
        return true;
    }
    if (document.result.size() < kReportLimit) document.result += channel.report;
    return false;
}

// What stands before the current element is finished.
bool SendWhatIsFinished(DocumentState& document) {
    ElementRecord& current = RecordOf(document, document.currentPos);
    if (document.text.size() <= static_cast<std::size_t>(document.channel->blockSize) ||
        current.start == 0) {
        return true;
    }
    if (!Send(document, current.start, false)) return false;
    current.start = 0;
    return true;
}

// The parent, a single tag until now, becomes a start tag. Its line end comes behind its end tag.
void OpenParent(DocumentState& document, bool lineEnds) {
    TextFileChannel::OpenElement& open = document.channel->entered.back();
    const ElementRecord& record = RecordOf(document, document.parentPos);
    document.text.resize(record.start + record.length);
    if (!record.Has(kRecordUnended)) {
        document.text.resize(document.text.size() - 2); // "/>"
        document.text += L'>';
    }
    if (lineEnds) document.text += kLineEnd;
    open.hasStartTag = true;
    BlankStreamRecord(document, static_cast<std::uint32_t>(document.parentPos));
}

bool CanBeEnded(const DocumentState& document) {
    if (document.parentPos == 0) return true;
    const auto depth = static_cast<std::uint32_t>(document.parentPos);
    return document.channel->openTags.NameAt(depth).size() + kEndTagMarks <= kLongestEndTag;
}

// Text behind the current element, which gets a line end of its own.
void Append(DocumentState& document, std::wstring_view text, bool lineEnd) {
    const std::size_t offset = document.text.size() - (lineEnd ? 0 : LineEndBehind(document));
    document.text.insert(offset, text);
    if (lineEnd) {
        document.text += kLineEnd;
        document.channel->lineEndBehind = true;
    }
}

} // namespace

bool AddElementToStream(DocumentState& document, const wchar_t* name, const wchar_t* value,
                        std::uint32_t flags) {
    NewElement element;
    if (!PositionsHold(document) || (flags & kNoWayBack) != 0 || !CanBeEnded(document) ||
        !WriteElement(name, value, flags, element)) {
        return false;
    }
    TextFileChannel& channel = *document.channel;
    const bool lineEnds = (flags & kAddNoLineEnds) == 0;
    const auto level = static_cast<std::uint32_t>(document.parentPos) + 1;
    document.text.reserve(document.text.size() + element.text.size() + 3 * kLineEnd.size());
    ElementRecord& record = MakeStreamRecord(document, level);
    if (document.parentPos != 0 && !channel.entered.back().hasStartTag) {
        OpenParent(document, lineEnds);
        channel.lineEndBehind = false;
    }
    const std::size_t start = document.text.size() - (lineEnds ? 0 : LineEndBehind(document));
    Append(document, element.text, lineEnds);
    element.FillRecord(record, start);
    record.SetLevel(level);
    record.parent = level - 1;
    document.nextFreePos = static_cast<std::int32_t>(level) + 1;
    document.docFlags |= kDocModified;
    SetPosition(document, document.parentPos, static_cast<std::int32_t>(level), 0);
    return SendWhatIsFinished(document);
}

bool SetAttributeInStream(DocumentState& document, std::int32_t position, const wchar_t* name,
                          const wchar_t* value, std::uint32_t flags) {
    const bool current = PositionsHold(document) && position == document.currentPos &&
                         position != 0 && RecordOf(document, position).StartTagLength() != 0;
    return current && EditAttribute(document, position, name, value, flags);
}

bool IntoElementInWriting(DocumentState& document) {
    if (!PositionsHold(document) || document.currentPos == 0 || !IsSingleTag(document))
        return false;
    TextFileChannel& channel = *document.channel;
    channel.entered.reserve(channel.entered.size() + 1);
    channel.openTags.Push(ElementName(document, document.currentPos));
    channel.entered.push_back({false, channel.lineEndBehind});
    SetPosition(document, document.currentPos, 0, 0);
    return true;
}

bool OutOfElementInWriting(DocumentState& document) {
    if (!PositionsHold(document) || document.parentPos == 0) return false;
    TextFileChannel& channel = *document.channel;
    const TextFileChannel::OpenElement open = channel.entered.back();
    if (open.hasStartTag) {
        std::wstring endTag(L"</");
        endTag.append(channel.openTags.NameAt(channel.openTags.Depth())).append(L">");
        if (open.lineEndBehind) endTag += kLineEnd;
        document.text += endTag;
    }
    channel.openTags.Pop();
    channel.entered.pop_back();
    channel.lineEndBehind = open.lineEndBehind;
    document.nextFreePos = document.parentPos + 1;
    SetPosition(document, document.parentPos - 1, document.parentPos, 0);
    return true;
}

bool FinishStream(DocumentState& document) {
    while (OutOfElementInWriting(document)) {
    }
    return Send(document, document.text.size(), true);
}

} // namespace ObLibX
