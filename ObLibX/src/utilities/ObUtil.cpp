#include "ObLibX/src/utilities/ObUtil.h"

#include "ObLib/Src/ObString.h"
#include "ObLib/Src/Win32/ObWinReg.h"

namespace ObLibX {
namespace {

constexpr int kLowestControlId = 1000;
constexpr int kTrueColorBits = 32;
constexpr int kUnscaledDpi = 96;

constexpr wchar_t kSettingsPath[] = L"SOFTWARE\\Ombrix Computing\\Ombrix\\Ombrix";
constexpr wchar_t kCompressionMethod[] = L"DefaultCompressionMethod";
constexpr std::int32_t kNoCompression = 0;
constexpr std::int32_t kBestCompression = 9;

// A device context that is borrowed from a window (null: the screen) and given back.
class BorrowedDc {
public:
    BorrowedDc(HWND window, HDC context) : window_(window), context_(context) {}
    BorrowedDc(const BorrowedDc&) = delete;
    BorrowedDc& operator=(const BorrowedDc&) = delete;
    ~BorrowedDc() {
        if (context_ != nullptr) ReleaseDC(window_, context_);
    }
    explicit operator bool() const { return context_ != nullptr; }
    HDC Get() const { return context_; }

private:
    HWND window_;
    HDC context_;
};

bool ReadText(HKEY root, ObLib::ObString& out) {
    ObLib::ObRegKey key(root, kSettingsPath);
    ObLib::ObBuffer value;
    DWORD type = 0;
    if (!key.Open() || !key.ReadValue(kCompressionMethod, type, value, ObLib::kAcceptString))
        return false;
    out.AssignText(static_cast<const wchar_t*>(value.data));
    return true;
}

} // namespace

bool IsHighContrast() {
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool IsLowColor() {
    const BorrowedDc screen(nullptr, GetDC(nullptr));
    return screen && GetDeviceCaps(screen.Get(), BITSPIXEL) < kTrueColorBits;
}

int GetDpi() {
    const HWND desktop = GetDesktopWindow();
    const BorrowedDc context(desktop, GetWindowDC(desktop));
    return context ? GetDeviceCaps(context.Get(), LOGPIXELSX) : 0;
}

int Scale(int value) { return MulDiv(value, GetDpi(), kUnscaledDpi); }

bool IsWindowsVersionAtLeast(DWORD major, DWORD minor, WORD servicePack) {
    OSVERSIONINFOEXW wanted{};
    wanted.dwOSVersionInfoSize = sizeof wanted;
    wanted.dwMajorVersion = major;
    wanted.dwMinorVersion = minor;
    wanted.wServicePackMajor = servicePack;
    constexpr DWORD parts[] = {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR};
    DWORDLONG conditions = 0;
    DWORD asked = 0;
    for (const DWORD part : parts) {
        conditions = VerSetConditionMask(conditions, part, VER_GREATER_EQUAL);
        asked |= part;
    }
    return VerifyVersionInfoW(&wanted, asked, conditions) != FALSE;
}

int FirstFreeControlId(HWND dialog) {
    int id = kLowestControlId;
    while (GetDlgItem(dialog, id) != nullptr) ++id;
    return id;
}

COLORREF GetParentBackground(HWND window) {
    const HWND parent = GetParent(window);
    const BorrowedDc context(parent, parent != nullptr ? GetDC(parent) : nullptr);
    return context ? GetBkColor(context.Get()) : CLR_INVALID;
}

std::int32_t ReadDefaultCompressionMethod() {
    ObLib::ObString text;
    if (!ReadText(HKEY_CURRENT_USER, text) && !ReadText(HKEY_LOCAL_MACHINE, text))
        return kBestCompression;
    return text.IsInteger() && text.ToInteger() == 0 ? kNoCompression : kBestCompression;
}

} // namespace ObLibX
