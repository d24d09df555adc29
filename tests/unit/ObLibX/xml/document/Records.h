// A document's index written down for tests to compare.
#pragma once

#include <string>

#include "ObLibX/src/xml/XmlOffsetDocument.h"

namespace ObLibX {

// One line a record, from 1 on, each "name start+length tags s/e level l parent p child c next n
// prev v", and " first", " unended", " below", " bad" for the flags.
std::string RecordsOf(const XmlOffsetDocument& document);
// Reports without their line ends.
std::string ReportsOf(const XmlOffsetDocument& document);
// What every index must fulfil, whatever the text was: links that agree with each other, spans that
// are in the text and don't overlap. Empty when all is well, else what isn't.
std::string FaultsOf(const XmlOffsetDocument& document);

} // namespace ObLibX
