// What a document consists of. The parts of the library (parser, navigation, reading, editing,
// streams) are plain functions over this record; XmlOffsetDocument is the class that clients see.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "ObLibX/src/xml/document/ElementRecordTable.h"
#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"

namespace ObLibX {

// A position kept under a name.
struct SavedPosition {
    std::int32_t parentPos;
    std::int32_t currentPos;
    std::int32_t childPos;
};
using SavedPositionTable = std::map<std::wstring, SavedPosition>;

// Offsets and lengths are UTF-16 units from the start of `text`. Belongs to one thread.
struct DocumentState {
    std::wstring text;            // the whole document
    std::wstring result;          // the result report: sibling XML elements
    std::int32_t parentPos = 0;   // record of the current parent; 0 = the root pseudo-element
    std::int32_t currentPos = 0;  // record of the current element; 0 = before the first
    std::int32_t childPos = 0;    // record of the current child of the current element; 0 = none
    std::int32_t nextFreePos = 1; // the next record that was never used
    std::int32_t deletedPos = 0;  // head of the freed records, chained through `next`
    std::int32_t nodeType = 0;    // type of the current node; 0 = none
    std::int32_t nodeOffset = 0;  // the current node that isn't an element
    std::int32_t nodeLength = 0;  // its length; 0: the position is on an element, not on a node
    std::uint32_t docFlags = 0;
    std::unique_ptr<TextFileChannel> channel; // in stream mode only
    std::unique_ptr<SavedPositionTable> savedPositions;
    std::unique_ptr<ElementRecordTable> records;

    bool Has(std::uint32_t flag) const { return (docFlags & flag) != 0; }
    bool IgnoresCase() const { return Has(kDocIgnoreCase); }
};

// A record to use, all zero: a freed one before a new one. Grows the table by half when it is used
// up. Throws std::bad_alloc and changes nothing.
std::int32_t TakeRecord(DocumentState& document);

// The three positions; clears the node. On an element when `current` isn't 0.
void SetPosition(DocumentState& document, std::int32_t parent, std::int32_t current,
                 std::int32_t child);

// ---- The records of a stream: one a level, rewritten as elements come by. Of all of them the last
// one (nextFreePos - 1) alone points into the text in reading, and the current element's in
// writing; the others are blank, so that the text may move.

// As the end tag length of a record: the element is still open. A real end tag has three units.
inline constexpr std::uint32_t kStillOpen = 1;

// A cleared record for the element at `level`, 1 for a root element; its index is the level, and it
// is the last one. Throws std::bad_alloc and changes nothing.
ElementRecord& MakeStreamRecord(DocumentState& document, std::uint32_t level);

// Nothing of the element's text can be read any more; whether it is open stays.
void BlankStreamRecord(DocumentState& document, std::uint32_t level);

} // namespace ObLibX
