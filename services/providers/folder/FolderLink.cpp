#include "services/providers/folder/FolderLink.h"

#include <algorithm>
#include <string_view>

#include "ObLib/Src/AsciiLetters.h"
#include "ObLib/Src/PercentEncoding.h"
#include "ObLib/Src/Win32/Utf8.h"
#include "services/providers/folder/FolderPath.h"

namespace providers {
namespace {

using std::wstring_view;

constexpr wstring_view kPlace = kPathPlace;

// Whether the character may be in an address unescaped: a letter, digit or separator, or the % of
// an escape.
bool IsOfAddress(char character) {
    return ObLib::IsUnreserved(character) ||
           std::string_view(":/?#[]@!$&'()*+,;=%").find(character) != std::string_view::npos;
}

// "https://" and the like.
std::size_t LengthOfScheme(wstring_view pattern) {
    constexpr wstring_view kAfterScheme = L"://";
    const std::size_t end = pattern.find(kAfterScheme);
    if (end == wstring_view::npos || end == 0 || !ObLib::IsAsciiLetter(pattern[0])) return 0;
    const auto isOfScheme = [](wchar_t character) {
        return character < 0x80 && ObLib::IsUnreserved(static_cast<char>(character)) &&
               character != L'_' && character != L'~';
    };
    return std::ranges::all_of(pattern.substr(0, end), isOfScheme) ? end + kAfterScheme.size() : 0;
}

std::wstring FileAddress(const std::wstring& folder, const std::wstring& below) {
    const std::wstring path = BelowFolder(folder, below);
    if (path.starts_with(L"\\\\")) return L"file://" + EscapedPath(path.substr(2));
    return L"file:///" + path.substr(0, 2) + EscapedPath(path.substr(2)); // a drive and its colon
}

} // namespace

bool IsLinkPattern(const std::wstring& pattern) {
    const std::size_t scheme = LengthOfScheme(pattern);
    const std::size_t place = pattern.find(kPlace);
    const bool isPlain =
        std::ranges::none_of(pattern, [](wchar_t character) { return character <= L' '; });
    return pattern.size() <= kLongestPattern && isPlain && scheme != 0 &&
           place != std::wstring::npos && place > scheme;
}

std::wstring EscapedPath(const std::wstring& path) {
    std::wstring text;
    ObLib::AppendPercentEncoded(text, ObLib::ToUtf8(path), [](char character) {
        return ObLib::IsUnreserved(character) || character == '\\';
    });
    std::ranges::replace(text, L'\\', L'/');
    return text;
}

std::wstring PatternLink(const std::wstring& pattern, const std::wstring& escapedPath) {
    std::wstring link;
    wstring_view rest = pattern;
    for (std::size_t place = rest.find(kPlace); place != wstring_view::npos;
         place = rest.find(kPlace)) {
        ObLib::AppendPercentEncoded(link, ObLib::ToUtf8(rest.substr(0, place)), &IsOfAddress);
        link += escapedPath;
        rest.remove_prefix(place + kPlace.size());
    }
    ObLib::AppendPercentEncoded(link, ObLib::ToUtf8(rest), &IsOfAddress);
    return link;
}

std::wstring LinkOf(const std::wstring& folder, const std::wstring& pattern,
                    const std::wstring& below) {
    return pattern.empty() ? FileAddress(folder, below) : PatternLink(pattern, EscapedPath(below));
}

} // namespace providers
