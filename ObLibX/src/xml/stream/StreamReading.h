// The forward form of moving and reading, for a file that passes by once.
//
// The text is a window: what lies before the present element goes when more is read, and the
// offsets in Result() count from where the window began at the time. An element's record is the one
// of its level, rewritten with each element there; an end tag length of 1 says that the element is
// still open. Only the element that was found last can be read, until the next search; of the
// elements around it the names are kept.
//
// Names of tags are told apart by the case flag as it was at the opening. When memory runs out
// while the file is read, the place in it is lost: nothing more is found until it is opened anew.
#pragma once

#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The next element forward that matches. Without a path and with a relative one the search ends
// with the parent's end tag, otherwise with the file. It passes each element once: a search that
// fails has used up what it passed, and no element is current then. A step with a child test
// matches nothing, and so does one with an attribute's test for an element that was open before the
// search began. A name[N] counts the children of an open element from its first, and on the present
// level from behind the present element, if there is one.
//
// A search that leaves the parent, as "/..." and "//..." may, and finds nothing leaves the position
// in the innermost element around it that is open.
//
// A lone end tag and a node that can't be read end the search too: the position is then on that
// node (kNodeLoneEndTag, kNodeError), Result() tells what was wrong, and the next search goes on
// behind it.
bool FindElementInStream(DocumentState& document, const wchar_t* path);

// Into the element that was found, as long as it is open: neither written as a single tag nor read
// to its end by GetData.
bool IntoElementInStream(DocumentState& document);

// Up to the parent. What is left of its content is passed over by the next search.
bool OutOfElementInStream(DocumentState& document);

// The name of the current element, or of the current node.
std::wstring GetTagNameInStream(const DocumentState& document);

// Reads on to the element's end tag and keeps the whole element in the window as long. Empty, with
// nothing used up behind it, when a child comes first, or when the element isn't ended. Nodes
// that can't be read are passed over, and Result() tells them.
std::wstring GetDataInStream(DocumentState& document, std::int32_t position);

} // namespace ObLibX
