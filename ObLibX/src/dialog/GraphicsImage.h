// A decoded picture as an object of GDI+.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <memory>

#include "ObLibX/src/dialog/GraphicsToken.h"

namespace Gdiplus {
class Bitmap;
} // namespace Gdiplus

namespace ObLibX {

// Has a start of GDI+ of its own, which ends after the picture. On the thread of the dialogs.
class GraphicsImage {
public:
    // Decodes the stream, of which GDI+ keeps a reference. Throws std::bad_alloc.
    explicit GraphicsImage(IStream* stream);
    ~GraphicsImage();
    GraphicsImage(const GraphicsImage&) = delete;
    GraphicsImage& operator=(const GraphicsImage&) = delete;

    // False when the stream is no picture that GDI+ knows; Object is null then.
    [[nodiscard]] bool IsDecoded() const { return static_cast<bool>(bitmap_); }
    // Lives as long as this.
    [[nodiscard]] Gdiplus::Bitmap* Object() const { return bitmap_.get(); }
    // A bitmap of 32 bits, its transparent parts over an opaque black ground, as the handle of a
    // bitmap has no room for transparency of its own. The caller's; null when it fails.
    [[nodiscard]] HBITMAP MakeBitmap() const;

private:
    GraphicsToken token_; // first, as it ends last
    std::unique_ptr<Gdiplus::Bitmap> bitmap_;
};

} // namespace ObLibX
