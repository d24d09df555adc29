// One XML document: its text and, beside it, an index of where each element lies.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ObLibX/src/xml/document/AttributeCursor.h"
#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/Editing.h"
#include "ObLibX/src/xml/stream/StreamFile.h"

namespace ObLibX {

// Names, values and data are read out of the text on demand; changes are made in the text, and the
// numbers behind them move. A position is empty, on an element or on a node. Forgiving: nothing is
// thrown for bad XML, and what was wrong stands in Result() as XML. Exhausted memory throws
// std::bad_alloc out of any operation and leaves the object such that it can be set anew or
// released. Belongs to one thread; no lock.
class XmlOffsetDocument {
public:
    XmlOffsetDocument();
    ~XmlOffsetDocument(); // closes a file that is open
    XmlOffsetDocument(const XmlOffsetDocument&) = delete;
    XmlOffsetDocument& operator=(const XmlOffsetDocument&) = delete;

    // Takes the text, NUL-ended, and indexes it. True when it is well formed with exactly one root
    // element. Null releases text and records. False in a stream mode, with nothing done, and for a
    // text of 2^31 units or more.
    bool SetText(const wchar_t* text);
    bool SetText(std::wstring_view text);
    // Indexes the present text anew; the answer is that of SetText. In a stream nothing is indexed:
    // true in reading as long as nothing bad has come by, and in writing.
    bool ParseText();
    void ResetPosition(std::int32_t parent, std::int32_t current, std::int32_t child);

    // ---- Files larger than memory. A document in memory goes, with its positions; flags stay.
    // StreamFile.h tells what the options mean and when the answer is false.
    bool OpenForReading(const wchar_t* path, const StreamReadOptions& options = {});
    bool OpenForWriting(const wchar_t* path, const StreamWriteOptions& options = {});
    // In stream mode: ends what is open and flushes, closes the file, moves the channel's report to
    // Result(), empties the text and ends the mode. False when what was written may be lost, which
    // Result() tells, as it does an error of a file that was read. In memory mode nothing, and
    // true.
    bool Close();

    // ---- Moving. In a stream as StreamReading.h and StreamWriting.h tell.
    // The next element that matches `path` (null: any) from the current position on.
    bool FindElement(const wchar_t* path = nullptr);
    // The next one below the current element, behind the current child; it becomes the child.
    bool FindChildElement(const wchar_t* path = nullptr);
    bool IntoElement();
    bool OutOfElement();

    // ---- Reading. `position` is the index of an element's record.
    std::wstring GetTagName() const;
    std::wstring GetAttribute(std::int32_t position, const wchar_t* name) const;
    std::wstring GetAttributeNameAt(std::int32_t index) const;
    // All attributes of a tag in one reading, for who wants more than a few: AttributeCursor.h.
    bool GetNextAttribute(AttributeCursor& cursor) const;
    std::wstring GetData(std::int32_t position);

    // ---- Changing
    bool AddElement(const wchar_t* name, const wchar_t* value, std::uint32_t flags = 0);
    bool SetAttribute(std::int32_t position, const wchar_t* name, const wchar_t* value,
                      std::uint32_t flags = 0);

    const std::wstring& Text() const { return state_.text; }
    const std::wstring& Result() const { return state_.result; }
    std::uint32_t Flags() const { return state_.docFlags; }
    // The case and white space flags; the mode's bits can't be set here.
    void SetFlags(std::uint32_t flags);
    std::int32_t CurrentPosition() const { return state_.currentPos; }
    std::int32_t ChildPosition() const { return state_.childPos; }
    std::int32_t ParentPosition() const { return state_.parentPos; }
    const DocumentState& State() const { return state_; }
    // For the parts of this library and its tests.
    DocumentState& State() { return state_; }

private:
    DocumentState state_;
};

} // namespace ObLibX
