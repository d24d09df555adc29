// Whether an element is what a step of a path asks for.
#pragma once

#include <string_view>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/XmlPath.h"

namespace ObLibX {

// Name and test of the step; its count is the caller's business. `position` is an element's.
bool Matches(const DocumentState& document, std::int32_t position, const PathStep& step);

// Whether the element's start tag has the attribute.
bool HasAttribute(const DocumentState& document, std::int32_t position, std::wstring_view name);

} // namespace ObLibX
