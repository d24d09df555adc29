// Reads a text node by node: tags, text, comments and the rest.
#pragma once

#include <cstdint>
#include <string>

namespace ObLibX {

class TextFileChannel;

// Bit of NodeScan::flags: the start tag ended in "/>".
inline constexpr std::uint32_t kScanEmptyTag = 0x10000;
// Bit of TagScanner::tokenFlags: the last token was quoted.
inline constexpr std::uint32_t kTokenQuoted = 0x8000;

// What one step yields. `start` and `length` are units; after text was dropped in front (with a
// channel) they count from the new front.
struct NodeScan {
    std::int32_t type = 0; // kNode...
    std::int32_t start = 0;
    std::int32_t length = 0;
    std::uint32_t flags = 0;
    std::wstring report; // syntax reports of this step; empty mostly
};

// A small value that is carried along a text, which it doesn't own. The text needn't end in NUL;
// a NUL in it is an ordinary character. One thread. Nothing throws but exhausted memory, and only
// where a report is written or a channel reads more.
struct TagScanner {
    std::int32_t tokenStart = 0;
    std::int32_t tokenEnd = -1; // inclusive: an empty token ends one before its start
    std::int32_t cursor = 0;
    const wchar_t* textPointer = nullptr;
    std::int32_t textLength = 0;  // units at textPointer
    std::uint32_t tokenFlags = 0; // the document's flags, and kTokenQuoted
    // A span of the text, besides the node that is read, which the channel must not drop; none
    // while the length is 0. The start moves with the text.
    std::int32_t preservedStart = 0;
    std::int32_t preservedLength = 0;
    TextFileChannel* channel = nullptr; // asked for more text at the end; null in memory mode
    bool reports = true; // false: errors are found but not written up, as nobody takes them

    TagScanner(const wchar_t* text, std::size_t length, std::uint32_t documentFlags)
        : textPointer(text), textLength(static_cast<std::int32_t>(length)),
          tokenFlags(documentFlags) {}

    // Reads the next node from the cursor on and leaves the cursor behind it. For a tag and a
    // processing instruction the token is the name. Fills `scan` and gives its type.
    std::int32_t NextNode(NodeScan& scan);

    // Asks the channel for more text, keeping the node and the preserved span, and moves all
    // positions with what was dropped in front. False without a channel and at the file's end.
    bool ReadMore(NodeScan& scan);

    // Tokens inside a tag, for names, attributes and values. Each skips white space first and
    // leaves the cursor behind the token; false at the end of the text, or on a character that ends
    // it.
    bool NextName();          // ends where EndsName says
    bool NextAttributeName(); // ends where EndsAttributeName says
    // The value behind '=', on or behind which the cursor stands: quoted by " or ' (the token is
    // what is inside, kTokenQuoted is set and the cursor is behind the closing quote) or unquoted.
    // False when there is no unit of an unquoted value.
    bool NextValue();

    const wchar_t* Token() const { return textPointer + tokenStart; }
    std::int32_t TokenLength() const { return tokenEnd - tokenStart + 1; }
    // Whether the token is this name, with the document's case rule.
    bool TokenIs(const wchar_t* name, std::size_t length) const;

    // Looks for the attribute from the cursor (which stands behind the tag's name) to the tag's
    // end: the '>' outside quotes, or the end of the text; in a processing instruction, whose last
    // unquoted value would take its '?' along, let the text end before "?>". True with its value as
    // the token; an attribute without '=' has its own name as value.
    bool FindAttribute(const wchar_t* name, std::size_t length);
    // The attribute number `index`, from 0: its name is the token.
    bool FindAttributeAt(std::int32_t index);
};

} // namespace ObLibX
