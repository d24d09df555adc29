#include "ObLibX/src/xml/stream/StreamWriting.h"

#include <utility>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/Editing.h"
#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/Shifting.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"

namespace ObLibX {
namespace {

// Whether the position is the one at which the stream writes.
bool IsAtEnd(const DocumentState& document) {
    const auto depth = static_cast<std::int32_t>(document.channel->openTags.Depth());
    return PositionsAreValid(document) && document.parentPos == depth &&
           (document.currentPos == 0 || document.currentPos == depth + 1);
}

// Whether the current element is still one tag at the end of the text, so that it can be entered.
bool IsSingleTag(const DocumentState& document) {
    const ElementRecord& record = (*document.records)[document.currentPos];
    return record.StartTagLength() != 0 && record.StartTagLength() == record.length;
}

// Units after the current element: those of its line end, or 0.
std::size_t LineEndAfter(const DocumentState& document) {
    return document.channel->lineEndAfter ? kLineEnd.size() : 0;
}

// Writes the first `length` units of the text to the file. A failed write isn't repeated, as it
// isn't known how much of it is in the file.
bool Send(DocumentState& document, std::size_t length, bool flush) {
    TextFileChannel& channel = *document.channel;
    if (std::exchange(channel.writeFailed, true)) return false;
    const bool sent =
        channel.WriteOut(document.text.data(), static_cast<std::int32_t>(length), flush);
    channel.writeFailed = !sent;
    if (!sent) {
        if (document.result.size() < kReportLimit) document.result += channel.report;
        channel.report.clear();
    }
    return sent;
}

// Writes the text that can't change any more when the whole text is longer than a block: the text
// before the current element, and that element too when it is complete. The line end after it
// stays, as the next element may remove it.
bool SendWhatIsFinished(DocumentState& document) {
    const auto blockSize = static_cast<std::size_t>(document.channel->blockSize);
    ElementRecord& current = RecordAt(document, document.currentPos);
    const bool complete = current.StartTagLength() == 0;
    const std::size_t finished =
        complete ? document.text.size() - LineEndAfter(document) : current.start;
    if (document.text.size() <= blockSize || finished == 0) return true;
    if (!Send(document, finished, false)) return false;
    current.start = 0;
    return true;
}

// Makes a start tag of the parent's one tag. The parent's line end moves after its end tag.
void OpenParent(DocumentState& document, bool lineEnds) {
    TextFileChannel::OpenElement& open = document.channel->entered.back();
    const ElementRecord& record = RecordAt(document, document.parentPos);
    document.text.resize(record.start + record.length);
    if (!record.Has(kRecordUnended)) {
        document.text.resize(document.text.size() - 2); // "/>"
        document.text += L'>';
    }
    if (lineEnds) document.text += kLineEnd;
    open.hasStartTag = true;
    document.channel->lineEndAfter = false;
    BlankStreamRecord(document, static_cast<std::uint32_t>(document.parentPos));
}

bool CanBeEnded(const DocumentState& document) {
    if (document.parentPos == 0) return true;
    const auto depth = static_cast<std::uint32_t>(document.parentPos);
    return document.channel->openTags.NameAt(depth).size() + kEndTagMarks <= kLongestEndTag;
}

// Appends text after the current element; with `lineEnd` the text gets a line end of its own.
void Append(DocumentState& document, std::wstring_view text, bool lineEnd) {
    const std::size_t offset = document.text.size() - (lineEnd ? 0 : LineEndAfter(document));
    document.text.insert(offset, text);
    if (lineEnd) {
        document.text += kLineEnd;
        document.channel->lineEndAfter = true;
    }
}

} // namespace

bool AddElementToStream(DocumentState& document, const wchar_t* name, const wchar_t* value,
                        std::uint32_t flags) {
    NewElement element;
    TextFileChannel& channel = *document.channel;
    if (channel.writeFailed || !IsAtEnd(document) || (flags & kAddAsChild) != 0 ||
        !CanBeEnded(document) || !WriteElement(name, value, flags, element) ||
        !TextStaysInBounds(document, 0, element.text.size() + 3 * kLineEnd.size())) {
        return false;
    }
    const bool lineEnds = (flags & kAddNoLineEnds) == 0;
    const auto level = static_cast<std::uint32_t>(document.parentPos) + 1;
    document.text.reserve(document.text.size() + element.text.size() + 3 * kLineEnd.size());
    ElementRecord& record = MakeStreamRecord(document, level);
    if (document.parentPos != 0 && !channel.entered.back().hasStartTag) {
        OpenParent(document, lineEnds);
    }
    const std::size_t start = document.text.size() - (lineEnds ? 0 : LineEndAfter(document));
    Append(document, element.text, lineEnds);
    element.FillRecord(record, start);
    record.SetLevel(level);
    document.docFlags |= kDocModified;
    SetPosition(document, document.parentPos, static_cast<std::int32_t>(level), 0);
    return SendWhatIsFinished(document);
}

bool SetAttributeInStream(DocumentState& document, std::int32_t position, const wchar_t* name,
                          const wchar_t* value, std::uint32_t flags) {
    const bool current = IsAtEnd(document) && position == document.currentPos && position != 0 &&
                         RecordAt(document, position).StartTagLength() != 0;
    if (!current || !EditAttribute(document, position, name, value, flags)) return false;
    // The edit also grew the parent's record, which has no length in a stream.
    BlankStreamRecord(document, static_cast<std::uint32_t>(document.parentPos));
    return true;
}

bool IntoElementInWriting(DocumentState& document) {
    if (!IsAtEnd(document) || document.currentPos == 0 || !IsSingleTag(document)) return false;
    TextFileChannel& channel = *document.channel;
    if (channel.entered.size() == channel.entered.capacity()) {
        channel.entered.reserve(2 * channel.entered.size() + 1);
    }
    channel.openTags.Push(ElementName(document, document.currentPos));
    channel.entered.push_back({false, channel.lineEndAfter});
    SetPosition(document, document.currentPos, 0, 0);
    return true;
}

bool OutOfElementInWriting(DocumentState& document) {
    if (!IsAtEnd(document) || document.parentPos == 0) return false;
    TextFileChannel& channel = *document.channel;
    const TextFileChannel::OpenElement open = channel.entered.back();
    if (open.hasStartTag) {
        std::wstring endTag(L"</");
        endTag.append(channel.openTags.NameAt(channel.openTags.Depth())).append(L">");
        if (open.lineEndAfter) endTag += kLineEnd;
        document.text += endTag;
    }
    channel.openTags.Pop();
    channel.entered.pop_back();
    channel.lineEndAfter = open.lineEndAfter;
    const std::int32_t child = document.parentPos + 1;
    if (child < document.nextFreePos) {
        BlankStreamRecord(document, static_cast<std::uint32_t>(child));
    }
    SetPosition(document, document.parentPos - 1, document.parentPos, document.currentPos);
    SendWhatIsFinished(document); // the next write and the report show a failure
    return true;
}

bool FinishStream(DocumentState& document) {
    SetPosition(document, static_cast<std::int32_t>(document.channel->openTags.Depth()), 0, 0);
    while (OutOfElementInWriting(document)) {
    }
    return Send(document, document.text.size(), true);
}

} // namespace ObLibX
