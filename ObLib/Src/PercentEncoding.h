// Percent-encoding of texts in addresses of the web.
#pragma once

#include <string_view>

#include "ObLib/Src/AsciiLetters.h"

namespace ObLib {

// What stays as it is everywhere in an address: letters and digits of ASCII, and "-._~".
constexpr bool IsUnreserved(char c) noexcept {
    return IsAsciiLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' ||
           c == '~';
}

// Appends a byte as "%E4" to a string of narrow or wide characters.
template <class Text>
void AppendPercentByte(Text& to, char byte) {
    using Character = typename Text::value_type;
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    to += static_cast<Character>('%');
    to += static_cast<Character>(kDigits[value >> 4]);
    to += static_cast<Character>(kDigits[value & 15]);
}

// Appends UTF-8, each byte encoded but for ASCII characters for which `stays` is true.
template <class Text, class Stays>
void AppendPercentEncoded(Text& to, std::string_view utf8, Stays stays) {
    for (const char byte : utf8) {
        if ((byte & 0x80) == 0 && stays(byte))
            to += static_cast<typename Text::value_type>(byte);
        else
            AppendPercentByte(to, byte);
    }
}

} // namespace ObLib
