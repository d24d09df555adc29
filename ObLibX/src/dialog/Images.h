// Pictures from resources, and how they are drawn. On the thread of the dialogs.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/GraphicsImage.h"

// A macro of the system's headers renames LoadImage. Without it the function has one name,
// whichever header is included first.
#undef LoadImage

namespace ObLibX {

// A picture of 8 to 32 bits a pixel: the bitmap `id`, or else a compressed image of this id
// (RCDATA, IMAGE or PNG) over a black ground. `module` null: the program's. Empty when there is
// none.
ObLib::UniqueBitmap LoadImage(std::int32_t id, HMODULE module = nullptr);

// Whether LoadImage finds a resource of this id; it isn't read.
bool HasImage(std::int32_t id, HMODULE module = nullptr);

// The compressed image of this id as an object of GDI+, which keeps its transparency; a bitmap
// resource isn't looked at. `module` as above. Null when there is none. Throws std::bad_alloc.
std::unique_ptr<GraphicsImage> LoadGraphicsImage(std::int32_t id, HMODULE module = nullptr);

// Width and height in pixels; nothing but zeros for what is no bitmap.
SIZE ImageSize(HBITMAP bitmap);

// A copy of a picture of 32 bits in the colour that high contrast asks for; empty when it isn't
// needed: without high contrast, and for pictures of fewer bits.
ObLib::UniqueBitmap RecolorForHighContrast(HBITMAP bitmap, bool isEnabled);

// A copy of a picture of 32 bits in one colour with the picture's alpha; empty for pictures of
// fewer bits, and when there is no memory for it.
ObLib::UniqueBitmap TintedCopy(HBITMAP bitmap, COLORREF color);

// Draws a picture; one of 32 bits with its alpha, which isn't premultiplied. Changes a copy of the
// pixels, not the picture. More than 32 bits end the process.
void DrawImageAt(HDC dc, HBITMAP bitmap, int x, int y);

// A copy of a picture of 32 bits that is multiplied by its alpha, as BlendImageAt wants it; empty
// for pictures of fewer bits, and when there is no memory for it.
ObLib::UniqueBitmap PremultipliedCopy(HBITMAP bitmap);
// Draws such a copy, which has this size.
void BlendImageAt(HDC dc, HBITMAP premultiplied, const SIZE& size, int x, int y);

} // namespace ObLibX
