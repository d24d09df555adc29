#include "ObLibX/src/dialog/GraphicsImage.h"

#include <algorithm>

// The headers of GDI+ use these two without their namespace.
using std::max;
using std::min;
#include <gdiplus.h>

namespace ObLibX {

GraphicsImage::GraphicsImage(IStream* stream) {
    if (!token_) return;
    auto bitmap = std::make_unique<Gdiplus::Bitmap>(stream);
    if (bitmap->GetLastStatus() == Gdiplus::Ok) bitmap_ = std::move(bitmap);
}

GraphicsImage::~GraphicsImage() = default;

HBITMAP GraphicsImage::MakeBitmap() const {
    HBITMAP bitmap = nullptr;
    const bool isMade =
        bitmap_ && bitmap_->GetHBITMAP(Gdiplus::Color(0xFF000000), &bitmap) == Gdiplus::Ok;
    return isMade ? bitmap : nullptr;
}

} // namespace ObLibX
