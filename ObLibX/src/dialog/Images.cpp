#include "ObLibX/src/dialog/Images.h"

#include <objidl.h>
#include <shlwapi.h>

#include <algorithm>
#include <span>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/dialog/Pixels.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

using ObLib::UniqueBitmap;

constexpr wchar_t kModule[] = L"ObLibX\\src\\Images.cpp";

constexpr int kAlphaBits = 32;
constexpr COLORREF kDisabledColor = 0x808080;
constexpr COLORREF kColorBits = 0xFFFFFF;

using StreamPtr = ObLib::ComPtr<IStream>;

// Empty when the module has no such resource.
StreamPtr ResourceStream(HMODULE module, std::int32_t id, const wchar_t* type) {
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type);
    const HGLOBAL loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return {};
    return StreamPtr(
        SHCreateMemStream(static_cast<const BYTE*>(bytes), SizeofResource(module, found)));
}

// Of compressed images, in the order in which they are tried.
const wchar_t* const kCompressed[] = {RT_RCDATA, L"IMAGE", L"PNG"};

// The first of the types under which a picture is found that GDI+ knows; null: none is.
std::unique_ptr<GraphicsImage> Decoded(std::int32_t id, HMODULE module) {
    for (const wchar_t* const type : kCompressed) {
        const StreamPtr stream = ResourceStream(module, id, type);
        if (!stream) continue;
        auto image = std::make_unique<GraphicsImage>(stream.Get());
        if (image->IsDecoded()) return image;
    }
    return nullptr;
}

HMODULE ModuleOrProgram(HMODULE module) {
    return module != nullptr ? module : ObLib::AppGlobals().programModule;
}

BITMAP Described(HBITMAP bitmap) {
    BITMAP described{};
    if (GetObjectW(bitmap, sizeof described, &described) != sizeof described) described = {};
    return described;
}

// A picture of 32 bits whose pixels are memory of this process.
struct PixelCopy {
    UniqueBitmap bitmap;
    std::span<Pixel> pixels;
};

// Empty when there is no memory for it.
PixelCopy CopyOf(HBITMAP bitmap, const BITMAP& described) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = described.bmWidth;
    info.bmiHeader.biHeight = -described.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = kAlphaBits;
    void* bits = nullptr;
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    UniqueBitmap copy(CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const auto rows = static_cast<UINT>(described.bmHeight);
    if (!copy || GetDIBits(dc.Get(), bitmap, 0, rows, bits, &info, DIB_RGB_COLORS) == 0) return {};
    const std::size_t count = static_cast<std::size_t>(described.bmWidth) * rows;
    return {std::move(copy), {static_cast<Pixel*>(bits), count}};
}

// A bitmap in the memory device context that all pictures are drawn from, for as long as it is
// drawn.
class SelectedBitmap {
public:
    explicit SelectedBitmap(HBITMAP bitmap) : old_(SelectObject(Dc(), bitmap)) {}
    SelectedBitmap(const SelectedBitmap&) = delete;
    SelectedBitmap& operator=(const SelectedBitmap&) = delete;
    ~SelectedBitmap() { SelectObject(Dc(), old_); }
    static HDC Dc() {
        static ObLib::UniqueMemoryDc dc;
        if (!dc) dc.Reset(CreateCompatibleDC(nullptr));
        return dc.Get();
    }

private:
    HGDIOBJ old_;
};

} // namespace

UniqueBitmap LoadImage(std::int32_t id, HMODULE module) {
    const HMODULE from = ModuleOrProgram(module);
    UniqueBitmap bitmap(static_cast<HBITMAP>(
        LoadImageW(from, MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
    if (bitmap) return bitmap;
    const auto image = Decoded(id, from);
    return UniqueBitmap(image ? image->MakeBitmap() : nullptr);
}

bool HasImage(std::int32_t id, HMODULE module) {
    const HMODULE from = ModuleOrProgram(module);
    const auto isThere = [&](const wchar_t* type) {
        return FindResourceW(from, MAKEINTRESOURCEW(id), type) != nullptr;
    };
    return isThere(RT_BITMAP) || std::ranges::any_of(kCompressed, isThere);
}

std::unique_ptr<GraphicsImage> LoadGraphicsImage(std::int32_t id, HMODULE module) {
    return Decoded(id, ModuleOrProgram(module));
}

SIZE ImageSize(HBITMAP bitmap) {
    const BITMAP described = Described(bitmap);
    return {described.bmWidth, described.bmHeight};
}

UniqueBitmap RecolorForHighContrast(HBITMAP bitmap, bool isEnabled) {
    const BITMAP described = Described(bitmap);
    if (described.bmBitsPixel != kAlphaBits || !IsHighContrast()) return {};
    PixelCopy copy = CopyOf(bitmap, described);
    const COLORREF inverse = ~GetSysColor(COLOR_WINDOW) & kColorBits;
    Recolor(copy.pixels, isEnabled ? inverse : kDisabledColor);
    return std::move(copy.bitmap);
}

UniqueBitmap TintedCopy(HBITMAP bitmap, COLORREF color) {
    const BITMAP described = Described(bitmap);
    if (described.bmBitsPixel != kAlphaBits) return {};
    PixelCopy copy = CopyOf(bitmap, described);
    Tint(copy.pixels, color);
    return std::move(copy.bitmap);
}

void DrawImageAt(HDC dc, HBITMAP bitmap, int x, int y) {
    const BITMAP described = Described(bitmap);
    ObAssert(described.bmBitsPixel <= kAlphaBits);
    if (described.bmWidth == 0) return;
    const SIZE size{described.bmWidth, described.bmHeight};
    if (described.bmBitsPixel == kAlphaBits) {
        const UniqueBitmap copy = PremultipliedCopy(bitmap);
        if (copy) BlendImageAt(dc, copy.Get(), size, x, y);
        return;
    }
    const SelectedBitmap source(bitmap);
    BitBlt(dc, x, y, size.cx, size.cy, source.Dc(), 0, 0, SRCCOPY);
}

UniqueBitmap PremultipliedCopy(HBITMAP bitmap) {
    const BITMAP described = Described(bitmap);
    if (described.bmBitsPixel != kAlphaBits) return {};
    PixelCopy copy = CopyOf(bitmap, described);
    Premultiply(copy.pixels);
    return std::move(copy.bitmap);
}

void BlendImageAt(HDC dc, HBITMAP premultiplied, const SIZE& size, int x, int y) {
    const SelectedBitmap source(premultiplied);
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    AlphaBlend(dc, x, y, size.cx, size.cy, source.Dc(), 0, 0, size.cx, size.cy, blend);
}

} // namespace ObLibX
