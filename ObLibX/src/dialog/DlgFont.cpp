#include "ObLibX/src/dialog/DlgFont.h"

#include <algorithm>
#include <cwchar>
#include <map>
#include <optional>

#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

using ObLib::ObString;

constexpr wchar_t kVistaFont[] = L"Segoe UI";
constexpr std::int32_t kVistaFontSize = 9;
constexpr int kPointsToTheInch = 72;
constexpr LONG kBold = 700;

bool IsVistaOrLater() { return IsWindowsVersionAtLeast(6, 0, 0); }

int ScreenDpiY() {
    const HDC screen = GetDC(nullptr);
    if (screen == nullptr) return USER_DEFAULT_SCREEN_DPI;
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

// The system's font for messages, in points.
BaseFont MessageFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (!SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        return {kVistaFont, kVistaFontSize};
    }
    const int height = MulDiv(metrics.lfMessageFont.lfHeight, kPointsToTheInch, ScreenDpiY());
    return {metrics.lfMessageFont.lfFaceName, height < 0 ? -height : height};
}

// The fonts by key and by handle. Their handles are released by nobody: windows use them until the
// process ends.
class FontCache {
public:
    HFONT Get(const FontRequest& font) {
        if (const FontEntry* const made = Find(font)) return made->handle;
        const HFONT handle = Make(font);
        if (handle == nullptr) return nullptr;
        const ObString key = FontKey(font);
        const auto added = byKey_.try_emplace(
            key, FontEntry{key, font.name, font.size, font.weight, font.style, handle});
        byHandle_.try_emplace(handle, &added.first->second);
        return handle;
    }
    const FontEntry* Find(HFONT handle) const {
        const auto found = byHandle_.find(handle);
        return found == byHandle_.end() ? nullptr : found->second;
    }

private:
    // By the parts of the key, as making the key takes longer than looking through a few fonts, and
    // controls ask whenever they paint.
    const FontEntry* Find(const FontRequest& font) const {
        for (const auto& [key, entry] : byKey_) {
            if (entry.size == font.size && entry.weight == font.weight &&
                entry.style == font.style && entry.name.CompareNoCase(font.name) == 0) {
                return &entry;
            }
        }
        return nullptr;
    }
    static HFONT Make(const FontRequest& font) {
        LOGFONTW wanted{};
        wanted.lfHeight = -MulDiv(font.size, ScreenDpiY(), kPointsToTheInch);
        wanted.lfWeight = font.weight;
        wanted.lfItalic = (font.style & kFontItalic) != 0;
        wanted.lfUnderline = (font.style & kFontUnderline) != 0;
        wanted.lfStrikeOut = (font.style & kFontStrikeout) != 0;
        wanted.lfCharSet = DEFAULT_CHARSET;
        std::wcsncpy(wanted.lfFaceName, font.name.CStr(), LF_FACESIZE - 1);
        return CreateFontIndirectW(&wanted);
    }

    std::map<ObString, FontEntry> byKey_;
    std::map<HFONT, const FontEntry*> byHandle_;
};

FontCache& Cache() {
    static FontCache cache;
    return cache;
}

HGDIOBJ ShownFont(HWND window) {
    const auto own = reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
    return own != nullptr ? own : GetStockObject(SYSTEM_FONT);
}

// Null when it can't be made. Without a `weight` it is the font's own.
HFONT CopyOf(HGDIOBJ font, std::optional<LONG> weight) {
    LOGFONTW described{};
    if (GetObjectW(font, sizeof described, &described) == 0) return nullptr;
    described.lfWeight = weight.value_or(described.lfWeight);
    return CreateFontIndirectW(&described);
}

} // namespace

ObString GetBaseFont(std::int32_t& outSize) {
    BaseFont& font = ProcessDialogSettings().font;
    if (!font.name.HasText()) {
        font = IsVistaOrLater() ? BaseFont{kVistaFont, kVistaFontSize} : MessageFont();
    }
    outSize = font.size;
    return font.name;
}

HFONT GetFont(std::int32_t size, const ObString& name, std::int32_t weight, std::int32_t style) {
    std::int32_t baseSize = 0;
    const ObString baseName = GetBaseFont(baseSize);
    const FontRequest wanted{name.HasText() ? name : baseName, size != 0 ? size : baseSize, weight,
                             style};
    return Cache().Get(ProcessDialogSettings().substitution.Apply(wanted));
}

void AddFontSubstitution(const ObString& origName, std::int32_t origSize, const ObString& substName,
                         std::int32_t substSize) {
    ProcessDialogSettings().substitution.Add(origName, origSize, substName, substSize);
}

bool FindDialogFont(HMODULE, wchar_t* outName, std::size_t nameCapacity, std::int32_t& outSize) {
    if (!IsVistaOrLater() || nameCapacity == 0) return false;
    LoadDialogDefaults();
    BaseFont font;
    font.name = GetBaseFont(font.size);
    if (GetFont(font.size, font.name, kNormalFontWeight, 0) == nullptr) font = MessageFont();
    const std::size_t length = std::min<std::size_t>(font.name.Length(), nameCapacity - 1);
    std::wmemcpy(outName, font.name.CStr(), length);
    outName[length] = L'\0';
    outSize = font.size;
    return true;
}

const SharedFonts& InitSharedBoldFont(HWND window) {
    static SharedFonts fonts;
    if (fonts.normal == nullptr) fonts.normal = CopyOf(ShownFont(window), {});
    if (fonts.normal != nullptr && fonts.bold == nullptr) fonts.bold = CopyOf(fonts.normal, kBold);
    return fonts;
}

const FontEntry* FindFontEntry(HFONT handle) { return Cache().Find(handle); }

} // namespace ObLibX
