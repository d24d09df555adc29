#include "demo/mailpage/Picture.h"

#include "demo/mailpage/Drawing.h"

namespace mailpage {
namespace {

// {557CF406-1A04-11D3-9A73-0000F81EF32E}
constexpr CLSID kPngEncoder = {
    0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

ObLib::UniqueBitmap Capture(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    const HDC source = GetWindowDC(window);
    const ObLib::UniqueMemoryDc memory(CreateCompatibleDC(source));
    ObLib::UniqueBitmap bitmap(CreateCompatibleBitmap(source, width, height));
    const HGDIOBJ old = SelectObject(memory.Get(), bitmap.Get());
    BitBlt(memory.Get(), 0, 0, width, height, source, 0, 0, SRCCOPY);
    SelectObject(memory.Get(), old);
    ReleaseDC(window, source);
    return bitmap;
}

} // namespace

bool SavePicture(HWND window, const std::wstring& file) {
    RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    const ObLib::UniqueBitmap bitmap = Capture(window);
    if (!bitmap) return false;
    Gdiplus::Bitmap picture(bitmap.Get(), nullptr);
    return picture.Save(file.c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
}

} // namespace mailpage
