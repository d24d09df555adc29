// The trace call of the product.
#pragma once

namespace obcore {

// Takes a narrow format and its arguments, in the manner of printf. The body is empty: no line is
// written anywhere. The calls stay in the code with their texts, so that a build with a sink shows
// them. Wide arguments are given with %S.
void ObTrace(const char* format, ...) noexcept;

} // namespace obcore
