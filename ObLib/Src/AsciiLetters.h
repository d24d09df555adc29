// The letters A to Z and a to z, without regard to any language.
#pragma once

namespace ObLib {

constexpr bool IsAsciiUpper(wchar_t unit) noexcept { return unit >= L'A' && unit <= L'Z'; }
constexpr bool IsAsciiLower(wchar_t unit) noexcept { return unit >= L'a' && unit <= L'z'; }
constexpr bool IsAsciiLetter(wchar_t unit) noexcept {
    return IsAsciiUpper(unit) || IsAsciiLower(unit);
}

// The small letter of an ASCII capital; every other unit as it is.
constexpr wchar_t FoldAscii(wchar_t unit) noexcept {
    return IsAsciiUpper(unit) ? static_cast<wchar_t>(unit + (L'a' - L'A')) : unit;
}

} // namespace ObLib
