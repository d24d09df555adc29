// Pages whose contents save or restore the graphics state without the other half.
#pragma once

#include <cstddef>

#include <qpdf/QPDFPageObjectHelper.hh>

namespace transforms {

// How many states the page's contents leave saved. Contents that restore more than they saved get
// a copy of their own without those operators, which viewers pass over: after a `q` before the
// contents they would no longer be passed over. Throws what the library throws.
std::size_t SavedStatesOf(QPDF& pdf, QPDFPageObjectHelper& page);

} // namespace transforms
