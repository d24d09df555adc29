// Pages whose contents leave something open, or close what wasn't.
#pragma once

#include <string>

#include <qpdf/QPDFPageObjectHelper.hh>

namespace transforms {

// The operators that close what the page's contents leave open: a text, marked content (which may
// belong to a layer that isn't shown) and saved graphics states. Contents that restore more states
// than they saved get a copy of their own: a viewer ignores a `Q` without a `q`. We put a `q` in
// front, so such a `Q` would undo ours; it is removed. Throws what the library throws.
std::string ClosingOf(QPDF& pdf, QPDFPageObjectHelper& page);

} // namespace transforms
