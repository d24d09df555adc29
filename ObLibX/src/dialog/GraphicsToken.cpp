#include "ObLibX/src/dialog/GraphicsToken.h"

#include <objidl.h>

#include <algorithm>

// The headers of GDI+ use these two without their namespace.
using std::max;
using std::min;
#include <gdiplus.h>

namespace ObLibX {

GraphicsToken::GraphicsToken() {
    const Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&token_, &input, nullptr) != Gdiplus::Ok) token_ = 0;
}

GraphicsToken::~GraphicsToken() {
    if (token_ != 0) Gdiplus::GdiplusShutdown(token_);
}

} // namespace ObLibX
