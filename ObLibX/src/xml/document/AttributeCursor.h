// Reads the attributes of a tag one after the other, each once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The place of such a reading, and the attribute at that place. The strings keep their memory from
// one attribute and one tag to the next, so that a client with one cursor for a whole document
// allocates for the longest name and value only. Belongs to the document's thread.
class AttributeCursor {
public:
    AttributeCursor() = default;
    // `position` as in GetAttribute: an element's record, or on a current processing instruction
    // the current position.
    explicit AttributeCursor(std::int32_t position) : position_(position) {}

    // Before the first attribute of that tag.
    void Begin(std::int32_t position);

    // Not decoded.
    const std::wstring& Name() const { return name_; }
    // Decoded; the decoded name when there is no '='. Where two attributes have the same name, each
    // is read with its own value, while GetAttribute finds the first.
    const std::wstring& Value() const { return value_; }

private:
    friend bool GetNextAttribute(const DocumentState& document, AttributeCursor& cursor);

    std::int32_t position_ = 0;
    std::size_t read_ = 0; // units of the tag that were read; 0 before the first attribute
    std::wstring name_;
    std::wstring value_;
};

// Goes to the next attribute in the tag; a whole tag takes time linear in its length. False past
// the last attribute and where there is no such tag; name and value are then empty. A change of
// this tag requires a new Begin, other changes don't. Without it some attributes may be read twice,
// in part or not at all, and nothing worse happens. Throws std::bad_alloc; the cursor then stays
// where it was, and the contents of its strings are undefined.
bool GetNextAttribute(const DocumentState& document, AttributeCursor& cursor);

} // namespace ObLibX
