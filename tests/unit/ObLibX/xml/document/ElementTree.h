// The contents of an index, to compare: the elements in document order, whatever the order of their
// records.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "ObLibX/src/xml/XmlOffsetDocument.h"

struct TreeElement {
    int depth; // by the links
    std::uint32_t start;
    std::uint32_t length;
    std::uint32_t tagLengths;
    std::uint32_t flagsAndLevel;

    bool operator==(const TreeElement&) const = default;
};
std::ostream& operator<<(std::ostream& out, const TreeElement& element);

std::vector<TreeElement> TreeOf(const ObLibX::DocumentState& document);

// Fails the test when a link or the first sibling's flag is wrong, a child is outside its parent,
// or record 0 isn't as long as the text.
void ExpectSoundLinks(const ObLibX::DocumentState& document);

// Fails the test unless the document's elements are those of its text indexed anew.
void ExpectAsIndexedAnew(const ObLibX::XmlOffsetDocument& document);

// Puts the document on the first node of this text, in front of the present position.
void PutOnNode(ObLibX::XmlOffsetDocument& document, std::int32_t type, const wchar_t* node);

// ASCII only.
std::string Narrow(const std::wstring& text);
