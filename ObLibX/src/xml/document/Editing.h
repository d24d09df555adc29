// Changes: text spliced in place, and the numbers behind it moved. After each change the records
// are those that indexing the text anew would give, in another order of their indices.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Adds <name>value</name>, or without a value (null or empty) <name/>, where `flags` (kAdd...) and
// the position say; it becomes the current element, or with kAddAsChild the current child. By
// default it goes behind the current element, and at the end of the parent's content when there is
// none.
//
// False with nothing changed: in a stream mode; with kAddAsChild without a current element; for a
// value with kAddNoEndTag; for a name that a tag couldn't hold or that a path couldn't name (see
// IsWritableName); when a tag would pass its length field (a name of more than 1,020 units with a
// value, or in a parent that has to be opened; of some 4,194,300 without), or the text
// 2^31 - 1 units; in or behind an element whose own tag is too long for the index. Throws
// std::bad_alloc and changes nothing.
bool AddElement(DocumentState& document, const wchar_t* name, const wchar_t* value,
                std::uint32_t flags);

// Replaces the attribute's value or adds the attribute right behind the last token of the tag, on
// an element or on the current processing instruction; before the others when the last one is a '='
// without a value, which would take it for its own. kAddKeepReferences is the one flag that counts.
// An attribute without '=' gets one. False with nothing changed: in a stream mode, where there is
// no such tag or it has no name, for a null or unwritable name, a null value, and when the tag or
// the text would become too long. Throws std::bad_alloc and changes nothing.
bool SetAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                  const wchar_t* value, std::uint32_t flags);

// As SetAttribute in every mode: for a stream's current element, whose text is still there.
bool EditAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                   const wchar_t* value, std::uint32_t flags);

// Whether a tag can hold the name and a client find it again: not empty, none of the units at which
// a name ends in a tag or in a path. An element's name must also begin as one (StartsTagName).
bool IsWritableName(const wchar_t* name);

// Replaces `removed` units at `offset` by `text`, which isn't part of the document's. A splice that
// passes the capacity reserves the new length and half of it and 128 units more. Throws
// std::bad_alloc and changes nothing.
void Splice(DocumentState& document, std::size_t offset, std::size_t removed, const wchar_t* text,
            std::size_t length);

// Walks from `position` in document order: an element behind the change moves its start by `delta`,
// one that contains it grows its length by `delta`; `position` itself stays as it is. With
// `startAfterChildren` the walk begins behind the children of `position`. Linear in what lies
// behind, without recursion; ends at record 0, whose length grows too.
void Adjust(DocumentState& document, std::int32_t position, std::int32_t delta,
            bool startAfterChildren);

} // namespace ObLibX
