#include "services/providers/folder/FolderLink.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

#include "services/providers/folder/FolderPath.h"

namespace providers {
namespace {

using std::wstring_view;

constexpr wstring_view kPlace = kPathPlace;

bool IsLetter(wchar_t character) {
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z');
}

bool IsUnreserved(wchar_t character) {
    return IsLetter(character) || (character >= L'0' && character <= L'9') ||
           wstring_view(L"-._~").find(character) != wstring_view::npos;
}

// What an address may contain besides: the separators of its parts, and what was escaped already.
bool IsOfAddress(wchar_t character) {
    return IsUnreserved(character) ||
           wstring_view(L":/?#[]@!$&'()*+,;=%").find(character) != wstring_view::npos;
}

// Appends a text with everything escaped, as bytes of UTF-8, but for what `stays` is true for.
template <class Stays>
void AppendEscaped(std::wstring& link, wstring_view text, Stays stays) {
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    const int units = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0');
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
    for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(size))) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80 && stays(static_cast<wchar_t>(value))) {
            link += static_cast<wchar_t>(value);
        } else {
            link.append({L'%', kDigits[value >> 4], kDigits[value & 15]});
        }
    }
}

// "https://" and the like.
std::size_t LengthOfScheme(wstring_view pattern) {
    constexpr wstring_view kAfterScheme = L"://";
    const std::size_t end = pattern.find(kAfterScheme);
    if (end == wstring_view::npos || end == 0 || !IsLetter(pattern[0])) return 0;
    const auto isOfScheme = [](wchar_t character) {
        return IsUnreserved(character) && character != L'_' && character != L'~';
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
    AppendEscaped(text, path,
                  [](wchar_t character) { return IsUnreserved(character) || character == L'\\'; });
    std::ranges::replace(text, L'\\', L'/');
    return text;
}

std::wstring PatternLink(const std::wstring& pattern, const std::wstring& escapedPath) {
    std::wstring link;
    wstring_view rest = pattern;
    for (std::size_t place = rest.find(kPlace); place != wstring_view::npos;
         place = rest.find(kPlace)) {
        AppendEscaped(link, rest.substr(0, place), &IsOfAddress);
        link += escapedPath;
        rest.remove_prefix(place + kPlace.size());
    }
    AppendEscaped(link, rest, &IsOfAddress);
    return link;
}

std::wstring LinkOf(const std::wstring& folder, const std::wstring& pattern,
                    const std::wstring& below) {
    return pattern.empty() ? FileAddress(folder, below) : PatternLink(pattern, EscapedPath(below));
}

} // namespace providers
