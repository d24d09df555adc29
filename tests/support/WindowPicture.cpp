#include "tests/support/WindowPicture.h"

#include <zlib.h>

#include <string_view>
#include <unordered_set>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

constexpr DWORD kBetweenPictures = 100; // milliseconds; long enough for a pending paint to show

// The device context of a whole window, given back at the end of the scope.
class WindowDc {
public:
    explicit WindowDc(HWND window) : window_(window), dc_(GetWindowDC(window)) {}
    ~WindowDc() {
        if (dc_) ReleaseDC(window_, dc_);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    HDC Get() const { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

bool CopyOut(HDC target, HDC source, HBITMAP bitmap, Picture& picture) {
    const HGDIOBJ old = SelectObject(target, bitmap);
    const BOOL copied = BitBlt(target, 0, 0, picture.width, picture.height, source, 0, 0, SRCCOPY);
    SelectObject(target, old);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.width;
    info.bmiHeader.biHeight = -picture.height; // the top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const auto rows = static_cast<UINT>(picture.height);
    return copied && GetDIBits(target, bitmap, 0, rows, picture.pixels.data(), &info,
                               DIB_RGB_COLORS) == picture.height;
}

void AppendNumber(std::string& out, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(number >> shift);
}

void AppendChunk(std::string& out, const char* type, std::string_view data) {
    const std::string body = std::string(type, 4).append(data);
    AppendNumber(out, static_cast<std::uint32_t>(data.size()));
    out += body;
    AppendNumber(out,
                 static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(body.data()),
                                                  static_cast<uInt>(body.size()))));
}

// Every row as the difference from the row above it, which leaves little to pack in windows.
std::string FilteredRows(const Picture& picture) {
    std::string rows;
    const auto width = static_cast<std::size_t>(picture.width);
    rows.reserve(static_cast<std::size_t>(picture.height) * (width * 3 + 1));
    for (std::size_t at = 0; at < picture.pixels.size(); ++at) {
        if (at % width == 0) rows += '\2';
        const std::uint32_t pixel = picture.pixels[at];
        const std::uint32_t above = at < width ? 0 : picture.pixels[at - width];
        for (int shift = 16; shift >= 0; shift -= 8) {
            rows += static_cast<char>((pixel >> shift) - (above >> shift));
        }
    }
    return rows;
}

std::string Packed(const std::string& data) {
    uLongf length = compressBound(static_cast<uLong>(data.size()));
    std::string packed(length, '\0');
    compress2(reinterpret_cast<Bytef*>(packed.data()), &length,
              reinterpret_cast<const Bytef*>(data.data()), static_cast<uLong>(data.size()), 9);
    packed.resize(length);
    return packed;
}

std::string PngBytes(const Picture& picture) {
    std::string header;
    AppendNumber(header, static_cast<std::uint32_t>(picture.width));
    AppendNumber(header, static_cast<std::uint32_t>(picture.height));
    header.append("\x08\x02\x00\x00\x00", 5); // 8 bits a channel, three channels
    std::string png("\x89PNG\r\n\x1A\n");
    AppendChunk(png, "IHDR", header);
    AppendChunk(png, "IDAT", Packed(FilteredRows(picture)));
    AppendChunk(png, "IEND", {});
    return png;
}

} // namespace

std::size_t Picture::Colours() const {
    return std::unordered_set<std::uint32_t>(pixels.begin(), pixels.end()).size();
}

std::optional<Picture> TakePicture(HWND window) {
    RECT place{};
    if (!GetWindowRect(window, &place)) return std::nullopt;
    Picture picture{place.right - place.left, place.bottom - place.top, {}};
    if (picture.width <= 0 || picture.height <= 0) return std::nullopt;
    picture.pixels.resize(static_cast<std::size_t>(picture.width) *
                          static_cast<std::size_t>(picture.height));
    const WindowDc source(window);
    if (!source.Get()) return std::nullopt;
    const ObLib::UniqueMemoryDc target(CreateCompatibleDC(source.Get()));
    const ObLib::UniqueBitmap bitmap(
        CreateCompatibleBitmap(source.Get(), picture.width, picture.height));
    if (!target || !bitmap) return std::nullopt;
    if (!CopyOut(target.Get(), source.Get(), bitmap.Get(), picture)) return std::nullopt;
    for (std::uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
    return picture;
}

std::optional<Picture> TakeSettledPicture(HWND window, std::size_t colours, DWORD limit) {
    const ULONGLONG end = GetTickCount64() + limit;
    std::optional<Picture> last;
    while (GetTickCount64() <= end && IsWindow(window)) {
        std::optional<Picture> next = TakePicture(window);
        const bool settled = next && last && next->pixels == last->pixels;
        if (settled && next->Colours() >= colours) return next;
        last = std::move(next);
        Sleep(kBetweenPictures);
    }
    return std::nullopt;
}

bool WritePng(const Picture& picture, const std::wstring& path) {
    const std::string bytes = PngBytes(picture);
    const ObLib::UniqueKernelHandle file(CreateFileW(
        path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                     nullptr) &&
           written == bytes.size();
}

HWND FindMainWindow(DWORD processId) {
    return FindTopWindow(
        [](HWND window) {
            return !GetWindow(window, GW_OWNER) && GetWindowTextLengthW(window) > 0;
        },
        processId);
}

} // namespace obtest
