// One XML document: its text and an index of where each element is in the text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ObLibX/src/xml/document/AttributeCursor.h"
#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/Editing.h"
#include "ObLibX/src/xml/stream/StreamFile.h"

namespace ObLibX {

// Names, values and data are read out of the text on demand. Changes are made in the text, and the
// numbers of the elements after them move. A position is empty, on an element or on a node. Bad XML
// throws nothing; Result() reports its errors, as XML. Any operation throws std::bad_alloc when
// memory runs out; the object can then be set anew or released. Belongs to one thread; no lock.
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
    // Indexes the present text anew and returns what SetText does. In a stream nothing is indexed:
    // true in writing, and in reading as long as no error was read.
    bool ParseText();
    void ResetPosition(std::int32_t parent, std::int32_t current, std::int32_t child);

    // ---- Files larger than memory. The text in memory and its positions are dropped; flags stay.
    // StreamFile.h documents the options and when the result is false.
    bool OpenForReading(const wchar_t* path, const StreamReadOptions& options = {});
    bool OpenForWriting(const wchar_t* path, const StreamWriteOptions& options = {});
    // In stream mode: ends the open elements, flushes and closes the file, moves the channel's
    // report to Result(), empties the text and ends the mode. False when text may not have reached
    // the file. Result() reports that, and also an error in a file that was read. In memory mode
    // this does nothing and returns true.
    bool Close();

    // ---- Moving. StreamReading.h and StreamWriting.h document what differs in a stream.
    // The next element that matches `path` (null: any) from the current position on.
    bool FindElement(const wchar_t* path = nullptr);
    // The next one below the current element, after the current child; it becomes the child.
    bool FindChildElement(const wchar_t* path = nullptr);
    bool IntoElement();
    bool OutOfElement();

    // ---- Reading. `position` is the index of an element's record.
    std::wstring GetTagName() const;
    std::wstring GetAttribute(std::int32_t position, const wchar_t* name) const;
    std::wstring GetAttributeNameAt(std::int32_t index) const;
    // Reads all attributes of a tag in one pass, for a client that needs many: AttributeCursor.h.
    bool GetNextAttribute(AttributeCursor& cursor) const;
    std::wstring GetData(std::int32_t position);

    // ---- Changing
    bool AddElement(const wchar_t* name, const wchar_t* value, std::uint32_t flags = 0);
    bool SetAttribute(std::int32_t position, const wchar_t* name, const wchar_t* value,
                      std::uint32_t flags = 0);

    const std::wstring& Text() const { return state_.text; }
    const std::wstring& Result() const { return state_.result; }
    std::uint32_t Flags() const { return state_.docFlags; }
    // Sets the case and white space flags; the bits of a stream mode can't be set here.
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
