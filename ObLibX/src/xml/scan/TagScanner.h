// Reads a text node by node: tags, text, comments and the rest.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ObLibX/src/xml/scan/ScannerState.h"

namespace ObLibX {

// A small value that is carried along a text, which it doesn't own. One thread. It throws
// std::bad_alloc only, and only where a report is written or more text is read.
struct TagScanner : ScannerState {
    using ScannerState::ScannerState;

    // Reads the next node from the cursor on and leaves the cursor after it. For a tag and a
    // processing instruction the token is the name. Fills `scan` and returns its type.
    std::int32_t NextNode(NodeScan& scan);

    // Tokens inside a tag, for names, attributes and values. Each skips white space first and
    // leaves the cursor after the token; false at the end of the text, or on a character that ends
    // it.
    bool NextName();          // ends where EndsName is true
    bool NextAttributeName(); // ends where EndsAttributeName is true
    // The value after '='; the cursor is on that '=' or after it. A value is quoted by " or ' (the
    // token is what is inside, kTokenQuoted is set and the cursor is after the closing quote) or
    // unquoted. False when an unquoted value has no unit.
    bool NextValue();

    // Whether the token is this name, with the document's case rule.
    bool TokenIs(const wchar_t* name, std::size_t length) const;

    // Looks for the attribute from the cursor (which is after the tag's name) to the tag's end: the
    // '>' outside quotes, or the end of the text. The caller lets the text of a processing
    // instruction end before its "?>", as an unquoted value would take the '?' with it. True with
    // the value as the token; an attribute without '=' has its own name as value.
    bool FindAttribute(const wchar_t* name, std::size_t length);
    // The attribute number `index`, from 0: its name is the token.
    bool FindAttributeAt(std::int32_t index);
};

} // namespace ObLibX
