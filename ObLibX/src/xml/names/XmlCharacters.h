// Which characters begin and end the tokens of a text, and how names compare.
#pragma once

#include <cstddef>
#include <string_view>

#include "ObLib/Src/AsciiLetters.h"

namespace ObLibX {

constexpr bool IsXmlSpace(wchar_t unit) {
    return unit == L' ' || unit == L'\t' || unit == L'\n' || unit == L'\r';
}
// The first character of a tag name in a scan: no digit and no low punctuation.
constexpr bool StartsTagName(wchar_t unit) {
    return unit > L'9' && unit != L';' && unit != L'<' && unit != L'=' && unit != L'>' &&
           unit != L'?' && unit != L'@' && unit != L'[' && unit != L'\\' && unit != L']' &&
           unit != L'^' && unit != L'`';
}
// The end of a tag name in a scan.
constexpr bool EndsTagName(wchar_t unit) {
    return IsXmlSpace(unit) || unit == L'/' || unit == L'>';
}
// The end of a name token, which is also a keyword, a charset or a processing instruction's target.
constexpr bool EndsName(wchar_t unit) {
    return IsXmlSpace(unit) || unit == L'!' || unit == L'"' || unit == L'\'' || unit == L'/' ||
           unit == L';' || unit == L'<' || unit == L'=' || unit == L'>' || unit == L'?' ||
           unit == L'\\';
}
constexpr bool EndsAttributeName(wchar_t unit) {
    return IsXmlSpace(unit) || unit == L'/' || unit == L'=' || unit == L'>' || unit == L'?';
}
constexpr bool EndsUnquotedValue(wchar_t unit) { return IsXmlSpace(unit) || unit == L'>'; }
// The end of a name that a caller gives. A step of a path is thus compared in place, without a
// copy.
constexpr bool EndsCallerName(wchar_t unit) {
    return unit == L'\0' || unit == L' ' || unit == L'/' || unit == L'=' || unit == L'[' ||
           unit == L']';
}
// The length of a name that a caller gives.
constexpr std::size_t CallerNameLength(const wchar_t* name) {
    std::size_t length = 0;
    while (!EndsCallerName(name[length])) {
        ++length;
    }
    return length;
}
// Whether a tag can contain the name and a caller find it again: it isn't empty and has no unit at
// which a name ends in a tag or in a path. An element's name must also begin as one
// (StartsTagName).
constexpr bool IsWritableName(std::wstring_view name) {
    for (const wchar_t unit : name) {
        if (EndsName(unit) || EndsCallerName(unit)) {
            return false;
        }
    }
    return !name.empty();
}

using ObLib::FoldAscii;

// Whether the first `length` units of both are equal. With `ignoreCase` only ASCII letters fold,
// and only up to the first equal character that isn't ASCII: from there on any difference counts.
// The caller checks that a terminator of its name follows.
inline bool SameName(const wchar_t* one, const wchar_t* other, std::size_t length,
                     bool ignoreCase) {
    bool folds = ignoreCase;
    for (std::size_t i = 0; i < length; ++i) {
        if (one[i] != other[i]) {
            if (!folds || FoldAscii(one[i]) != FoldAscii(other[i])) {
                return false;
            }
        } else if (one[i] >= 0x80) {
            folds = false;
        }
    }
    return true;
}

} // namespace ObLibX
