// Pages whose contents leave something open, or close what wasn't.
#pragma once

#include <string>

#include <qpdf/QPDFPageObjectHelper.hh>

namespace transforms {

// The operators that close what the page's contents leave open: a text, marked content (which may
// belong to a layer that isn't shown) and saved graphics states. Contents that restore more states
// than they saved get a copy of their own without those operators, which viewers pass over: after a
// `q` before the contents they would no longer be passed over. Throws what the library throws.
std::string ClosingOf(QPDF& pdf, QPDFPageObjectHelper& page);

} // namespace transforms
