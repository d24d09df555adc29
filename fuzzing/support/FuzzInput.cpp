#include "fuzzing/support/FuzzInput.h"

#include <algorithm>

namespace {

// Units that agree with a terminator in one of their bytes, and others at the edges of something.
constexpr wchar_t kOddUnits[] = {0x3C3C, 0x3C00, 0x3E00, 0x223E, 0x2F2F, 0x2000, 0xFF3E, 0x0120,
                                 0x00FF, 0x0100, 0x0800, 0xD7FF, 0xE000, 0x8020, 0x003D, 0x7F3C,
                                 0xFFFF, 0xFFFE, 0xFEFF, 0xFFFD, 0x2028, 0x4E2D, 0x3042, 0x20AC,
                                 0x0130, 0x0131, 0x017F, 0x212A, 0x0085, 0x00A0, 0xFF1C, 0x0001};
static_assert(std::size(kOddUnits) == 0x100 - 0xE0);

wchar_t UnitOf(std::uint8_t byte) {
    if (byte < 0xC0) return byte;
    if (byte < 0xD0) return static_cast<wchar_t>(0xD800 + (byte & 0xF) * 0x40);
    if (byte < 0xE0) return static_cast<wchar_t>(0xDC00 + (byte & 0xF) * 0x40);
    return kOddUnits[byte - 0xE0];
}

bool IsHigh(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLow(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void AppendUtf8(std::string& out, std::uint32_t value) {
    const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (value < 0x80) return put(value);
    if (value < 0x800) {
        put(0xC0 | value >> 6);
    } else {
        put(value < 0x10000 ? 0xE0 | value >> 12 : 0xF0 | value >> 18);
        if (value >= 0x10000) put(0x80 | (value >> 12 & 0x3F));
        put(0x80 | (value >> 6 & 0x3F));
    }
    put(0x80 | (value & 0x3F));
}

} // namespace

std::uint8_t FuzzInput::Byte() {
    if (left_ == 0) return 0;
    --left_;
    return *at_++;
}

std::wstring FuzzInput::Name(std::size_t most) {
    std::wstring name;
    while (name.size() < most && left_ != 0) {
        const wchar_t unit = UnitOf(Byte());
        if (unit == 0) break;
        name += unit;
    }
    return name;
}

std::wstring FuzzInput::Rest() {
    std::wstring text(left_, L'\0');
    std::transform(at_, at_ + left_, text.begin(), UnitOf);
    at_ += left_;
    left_ = 0;
    return text;
}

std::wstring WithWholePairs(std::wstring text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
            ++i;
        } else if (IsHigh(text[i]) || IsLow(text[i])) {
            text[i] = 0xFFFD;
        }
    }
    return text;
}

std::wstring WithoutNulls(std::wstring text) {
    std::erase(text, L'\0');
    return text;
}

std::string Utf8Of(const std::wstring& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t value = text[i];
        if (IsHigh(text[i])) value = 0x10000 + ((value & 0x3FF) << 10 | (text[++i] & 0x3FF));
        AppendUtf8(bytes, value);
    }
    return bytes;
}

std::string Utf16Of(const std::wstring& text, bool bigEndian) {
    std::string bytes;
    for (const wchar_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}
