// What a scanner carries along a text, apart from how it reads: TagScanner.h is for clients, and
// the two ways to read a node, NodeRules.h and QuickScan.h, work on this record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ObLibX {

// Bit of NodeScan::flags: the start tag ended in "/>".
inline constexpr std::uint32_t kScanEmptyTag = 0x10000;
// Bit of ScannerState::tokenFlags: the last token was quoted.
inline constexpr std::uint32_t kTokenQuoted = 0x8000;

// What one step of the scanner returns. `start` and `length` are units; after the front of the text
// was dropped (with a source) they count from the new front.
struct NodeScan {
    std::int32_t type = 0; // kNode...
    std::int32_t start = 0;
    std::int32_t length = 0;
    std::uint32_t flags = 0;
    std::wstring report; // syntax reports of this step; empty mostly
};

// Where a scanner gets more text when it has read all that is there. TextFileChannel is the one for
// files. One thread.
class TextSource {
public:
    std::wstring* documentText = nullptr; // the text that is read; the document's, not owned
    std::int32_t bufferKeepFrom = 0;      // the text before this offset isn't needed any more
    std::int32_t bufferRemoved = 0;       // units that the last ReadMore took from the front

    // Drops the text before bufferKeepFrom and appends more. False, with the text as it was, when
    // there is no more. Throws std::bad_alloc.
    virtual bool ReadMore() = 0;

protected:
    ~TextSource() = default;
};

// A small value. It doesn't own the text, which needn't end in NUL; a NUL in it is an ordinary
// character.
struct ScannerState {
    std::int32_t tokenStart = 0;
    std::int32_t tokenEnd = -1; // inclusive: an empty token ends one before its start
    std::int32_t cursor = 0;
    const wchar_t* textPointer = nullptr;
    std::int32_t textLength = 0;  // units at textPointer
    std::uint32_t tokenFlags = 0; // the document's flags, and kTokenQuoted
    // A span of the text, besides the node that is read, which the source must not drop; none while
    // the length is 0. The start moves with the text.
    std::int32_t preservedStart = 0;
    std::int32_t preservedLength = 0;
    TextSource* channel = nullptr; // asked for more text at the end; null in memory mode
    bool reports = true; // false: errors are found, but nobody reads their reports, so none is made

    ScannerState(const wchar_t* text, std::size_t length, std::uint32_t documentFlags)
        : textPointer(text), textLength(static_cast<std::int32_t>(length)),
          tokenFlags(documentFlags) {}

    const wchar_t* Token() const { return textPointer + tokenStart; }
    std::int32_t TokenLength() const { return tokenEnd - tokenStart + 1; }
};

} // namespace ObLibX
