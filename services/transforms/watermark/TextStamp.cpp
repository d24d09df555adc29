// Text drawn into memory; no window is needed.
#include "services/transforms/watermark/TextStamp.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {
namespace {

constexpr wchar_t kFontName[] = L"Segoe UI"; // the system takes another one where it is missing
constexpr int kEdgeParts = 18;               // the edge of a letter beside its height
constexpr int kEdgeStrength = 150;           // of 255

void Check(bool succeeded) {
    if (!succeeded) throw PictureFailure{PictureOutcome::OutOfMemory};
}

ObLib::UniqueFont MakeFont(std::uint32_t height) {
    ObLib::UniqueFont font(CreateFontW(
        -static_cast<int>(height), 0, 0, 0, FW_SEMIBOLD, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
        OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, VARIABLE_PITCH, kFontName));
    Check(static_cast<bool>(font));
    return font;
}

// Whether the first letter with a direction is read from right to left.
bool ReadsFromTheRight(const std::wstring& text) {
    for (const wchar_t letter : text) {
        WORD kind = 0;
        if (!GetStringTypeW(CT_CTYPE2, &letter, 1, &kind)) return false;
        if (kind == C2_RIGHTTOLEFT) return true;
        if (kind == C2_LEFTTORIGHT) return false;
    }
    return false;
}

UINT DrawingFlags(const std::wstring& text) {
    return DT_SINGLELINE | DT_NOPREFIX | (ReadsFromTheRight(text) ? DT_RTLREADING | DT_RIGHT : 0u);
}

// Draws on one memory DC at a time. The font must outlive the selection.
class Canvas {
public:
    Canvas() : dc_(CreateCompatibleDC(nullptr)) { Check(static_cast<bool>(dc_)); }
    ~Canvas() {
        if (oldFont_) SelectObject(dc_.Get(), oldFont_);
        if (oldBitmap_) SelectObject(dc_.Get(), oldBitmap_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    void UseFont(std::uint32_t height) {
        ObLib::UniqueFont font = MakeFont(height);
        const HGDIOBJ before = SelectObject(dc_.Get(), font.Get());
        if (!oldFont_) oldFont_ = before;
        font_ = std::move(font);
    }

    PictureSize Measure(const std::wstring& text) const {
        RECT area{};
        Check(DrawTextW(dc_.Get(), text.c_str(), static_cast<int>(text.size()), &area,
                        DrawingFlags(text) | DT_CALCRECT) != 0);
        return {static_cast<std::uint32_t>(std::max(area.right, 0L)),
                static_cast<std::uint32_t>(std::max(area.bottom, 0L))};
    }

    // How much each pixel of `size` is covered by the text, which begins `edge` pixels inside.
    PictureBytes Draw(const std::wstring& text, PictureSize size, int edge) {
        const std::uint32_t* const pixels = MakeBitmap(size);
        SetBkMode(dc_.Get(), TRANSPARENT);
        SetTextColor(dc_.Get(), RGB(255, 255, 255));
        RECT area{edge, edge, static_cast<LONG>(size.width) - edge,
                  static_cast<LONG>(size.height) - edge};
        Check(DrawTextW(dc_.Get(), text.c_str(), static_cast<int>(text.size()), &area,
                        DrawingFlags(text) | DT_END_ELLIPSIS) != 0);
        GdiFlush();
        PictureBytes covered(std::size_t{size.width} * size.height);
        for (std::size_t i = 0; i < covered.size(); ++i)
            covered[i] = static_cast<std::uint8_t>(pixels[i] >> 8 & 0xFF);
        return covered;
    }

private:
    // Black, rows from the top.
    const std::uint32_t* MakeBitmap(PictureSize size) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = static_cast<LONG>(size.width);
        info.bmiHeader.biHeight = -static_cast<LONG>(size.height);
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* pixels = nullptr;
        ObLib::UniqueBitmap bitmap(
            CreateDIBSection(dc_.Get(), &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
        Check(bitmap && pixels);
        std::memset(pixels, 0, std::size_t{size.width} * size.height * 4);
        const HGDIOBJ before = SelectObject(dc_.Get(), bitmap.Get());
        if (!oldBitmap_) oldBitmap_ = before;
        bitmap_ = std::move(bitmap);
        return static_cast<const std::uint32_t*>(pixels);
    }

    // In this order: the objects are deleted when they are selected no longer.
    ObLib::UniqueFont font_;
    ObLib::UniqueBitmap bitmap_;
    ObLib::UniqueMemoryDc dc_;
    HGDIOBJ oldFont_ = nullptr, oldBitmap_ = nullptr;
};

// The largest value within `reach` of each place of a line, of `count` places `step` apart.
void SpreadLine(std::uint8_t* line, std::size_t count, std::size_t step, int reach,
                PictureBytes& copy) {
    copy.resize(count);
    for (std::size_t i = 0; i < count; ++i) copy[i] = line[i * step];
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t first = i < static_cast<std::size_t>(reach) ? 0 : i - reach;
        const std::size_t last = std::min(i + reach + 1, count);
        line[i * step] = *std::max_element(copy.begin() + static_cast<std::ptrdiff_t>(first),
                                           copy.begin() + static_cast<std::ptrdiff_t>(last));
    }
}

PictureBytes Spread(PictureBytes covered, PictureSize size, int reach) {
    PictureBytes copy;
    for (std::size_t y = 0; y < size.height; ++y)
        SpreadLine(&covered[y * size.width], size.width, 1, reach, copy);
    for (std::size_t x = 0; x < size.width; ++x)
        SpreadLine(&covered[x], size.height, size.width, reach, copy);
    return covered;
}

// One colour where the text is, the other around it.
PictureBytes Coloured(const PictureBytes& letters, const PictureBytes& around, Letters colour) {
    PictureBytes pixels;
    pixels.reserve(letters.size() * 4);
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const unsigned edge = (255u - letters[i]) * around[i] / 255 * kEdgeStrength / 255;
        const unsigned opaque = letters[i] + edge;
        const unsigned light = opaque ? letters[i] * 255u / opaque : 0;
        const auto grey = static_cast<std::uint8_t>(colour == Letters::White ? light : 255 - light);
        pixels.insert(pixels.end(), {grey, grey, grey, static_cast<std::uint8_t>(opaque)});
    }
    return pixels;
}

// Letters that make the text fit, and the size of the text then.
struct Fitting {
    std::uint32_t letter;
    PictureSize text;
};
Fitting Fit(Canvas& canvas, const std::wstring& text, std::uint32_t letter, PictureSize most) {
    canvas.UseFont(letter);
    PictureSize size = canvas.Measure(text);
    while ((size.width > most.width || size.height > most.height) && letter > kLeastLetter) {
        const auto scaled = static_cast<std::uint32_t>(
            std::min(std::uint64_t{letter} * most.width / std::max(size.width, 1u),
                     std::uint64_t{letter} * most.height / std::max(size.height, 1u)));
        letter = std::clamp(scaled, kLeastLetter, letter - 1);
        canvas.UseFont(letter);
        size = canvas.Measure(text);
    }
    return {letter, {std::min(size.width, most.width), std::min(size.height, most.height)}};
}

} // namespace

bool TextStamp::HasRoomIn(PictureSize size) const noexcept {
    return !text_.empty() && LetterHeight(size, look_.place) != 0;
}

PlacedStamp TextStamp::For(PictureSize shown) const {
    PlacedStamp stamp;
    if (!HasRoomIn(shown)) return stamp;
    const std::uint32_t letter = LetterHeight(shown, look_.place);
    Canvas canvas;
    const Fitting fitting = Fit(canvas, text_, letter, LargestWatermark(shown));
    const int edge = std::max(static_cast<int>(fitting.letter) / kEdgeParts, 1);
    const auto around = static_cast<std::uint32_t>(2 * edge);
    stamp.size = {fitting.text.width + around, fitting.text.height + around};
    const PictureBytes letters = canvas.Draw(text_, stamp.size, edge);
    stamp.pixels = Coloured(letters, Spread(letters, stamp.size, edge), letters_);
    Place(stamp, shown, look_);
    return stamp;
}

} // namespace transforms
