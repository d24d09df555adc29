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

// A position that is stored under a name.
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

inline ElementRecord& RecordAt(DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}
inline const ElementRecord& RecordAt(const DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}

// Takes a record for use and clears it: a freed record before a new one. Grows the table by half
// when all its records are in use. Throws std::bad_alloc and changes nothing.
std::int32_t TakeRecord(DocumentState& document);

// Sets the three positions and clears the node. The document is then on an element when `current`
// isn't 0.
void SetPosition(DocumentState& document, std::int32_t parent, std::int32_t current,
                 std::int32_t child);

// ---- The records of a whole text

// The state before anything is indexed, which is also what a failed allocation leaves: no position,
// no saved position, no record in use. The text stays.
void ForgetElements(DocumentState& document) noexcept;

// Indexes `document.text` from its start: one record for each element, linked below record 0. What
// is wrong is appended to `document.result` and marked in the records concerned.
//
// The parsing stops at a lone end tag, and at an end tag that closes more than the innermost
// element. The elements that are open there keep their children, reach up to there and are marked
// unended. At the end of the text the children of open elements are handed up instead.
//
// Linear in the text, without recursion. Throws std::bad_alloc and leaves the elements forgotten.
void IndexElements(DocumentState& document);

// Whether the text that was indexed is well formed, with exactly one root element. In a stream only
// what came by counts: in reading nothing was bad, and in writing always true.
bool IsWellFormed(const DocumentState& document);

// ---- The records of a stream: one for each level, rewritten with each element at that level. Only
// one record points into the text: in reading the last (nextFreePos - 1), in writing that of the
// current element. The others are blank, so that the text may move.

// This end tag length of a record marks an element that is still open. A real end tag has at least
// three units.
inline constexpr std::uint32_t kStillOpen = 1;

// A cleared record for the element at `level`, 1 for a root element. Its index is the level, and it
// becomes the last record. Throws std::bad_alloc and changes nothing.
ElementRecord& MakeStreamRecord(DocumentState& document, std::uint32_t level);

// Makes the record blank, so that nothing of the element's text is read any more. Whether the
// element is open stays.
void BlankStreamRecord(DocumentState& document, std::uint32_t level);

} // namespace ObLibX
