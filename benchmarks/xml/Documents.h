// The documents that are measured, made anew for each run and always the same.
#pragma once

#include <string>

namespace bench {

// 600,000 nodes (500,000 elements and 100,000 texts) and 500,000 attributes.
std::wstring MarkupHeavyDocument();
// Long paragraphs with comments and CDATA sections among them; hardly any attributes.
std::wstring TextHeavyDocument();
// A description of a dialog, 20 kB of UTF-16.
std::wstring DialogDocument();

} // namespace bench
