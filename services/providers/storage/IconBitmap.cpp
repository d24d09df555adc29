#include "services/providers/storage/IconBitmap.h"

#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/ScopeExit.h"

namespace providers {
namespace {

// Rows from top to bottom, all transparent.
ObLib::UniqueBitmap MakeBitmap(int size) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size;
    info.bmiHeader.biHeight = -size;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    return ObLib::UniqueBitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
}

} // namespace

ObLib::UniqueBitmap BitmapOfIcon(UINT iconId, int size) {
    const auto icon = static_cast<HICON>(LoadImageW(ObLib::ThisModule(), MAKEINTRESOURCEW(iconId),
                                                    IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
    if (!icon) return {};
    const ObLib::ScopeExit destroyed([icon] { DestroyIcon(icon); });
    ObLib::UniqueBitmap bitmap = MakeBitmap(size);
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    if (!bitmap || !dc) return {};
    const HGDIOBJ before = SelectObject(dc.Get(), bitmap.Get());
    const BOOL isDrawn = DrawIconEx(dc.Get(), 0, 0, icon, size, size, 0, nullptr, DI_NORMAL);
    SelectObject(dc.Get(), before);
    if (!isDrawn) bitmap.Reset();
    return bitmap;
}

} // namespace providers
