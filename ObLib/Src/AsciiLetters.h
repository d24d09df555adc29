// The letters A to Z and a to z, without regard to any language, in narrow and in wide text.
#pragma once

#include <concepts>

namespace ObLib {

// No other type, so that no number is cut to a character unseen.
template <class Unit>
concept TextUnit = std::same_as<Unit, char> || std::same_as<Unit, wchar_t>;

template <TextUnit Unit>
constexpr bool IsAsciiUpper(Unit unit) noexcept {
    return unit >= 'A' && unit <= 'Z';
}

template <TextUnit Unit>
constexpr bool IsAsciiLower(Unit unit) noexcept {
    return unit >= 'a' && unit <= 'z';
}

template <TextUnit Unit>
constexpr bool IsAsciiLetter(Unit unit) noexcept {
    return IsAsciiUpper(unit) || IsAsciiLower(unit);
}

// The small letter of an ASCII capital; every other unit as it is.
template <TextUnit Unit>
constexpr Unit FoldAscii(Unit unit) noexcept {
    return IsAsciiUpper(unit) ? static_cast<Unit>(unit + ('a' - 'A')) : unit;
}

} // namespace ObLib
