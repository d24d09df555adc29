// What the tests of streams look at.
#pragma once

#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"

// Name, attributes in their order and data of the current element.
std::wstring CurrentElement(ObLibX::XmlOffsetDocument& document);

// Every element from here down and forward, one a line, indented by its depth. Skips nodes
// that can't be read.
std::wstring ElementsInOrder(ObLibX::XmlOffsetDocument& document);
// Those of a file and those of a text.
std::wstring ElementsOfFile(const wchar_t* path, const ObLibX::StreamReadOptions& options = {},
                            std::uint32_t flags = 0);
std::wstring ElementsOfText(std::wstring_view text, std::uint32_t flags = 0);

// Fails the test when a record or the current node points outside the text.
void ExpectWithinText(const ObLibX::XmlOffsetDocument& document);

bool ResultHas(const ObLibX::XmlOffsetDocument& document, const wchar_t* words);
