// Names, attributes and data, read out of the text where the index points.
#pragma once

#include <string>

#include "ObLibX/src/xml/DocumentState.h"

namespace ObLibX {

std::wstring GetTagName(const DocumentState& document);
std::wstring GetAttribute(const DocumentState& document, std::int32_t position,
                          const wchar_t* name);
std::wstring GetAttributeNameAt(const DocumentState& document, std::int32_t index);
std::wstring GetData(DocumentState& document, std::int32_t position);

} // namespace ObLibX
