// Texts read by the scanner, written down in one line for tests to compare.
#pragma once

#include <string>
#include <string_view>

#include "ObLibX/src/xml/scan/TagScanner.h"

namespace ObLibX {

// "element 0+5 [name] empty {reports}" for each node of the text, with "; " between: type, start
// and length; the name of a tag or an instruction; the reports without their line ends.
std::string Scans(std::wstring_view text);
// The same by the rules alone, character by character.
std::string PlainScans(std::wstring_view text);
std::string Narrow(std::wstring_view text);

} // namespace ObLibX
