#include "services/providers/storage/GuidText.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace providers {
namespace {

constexpr std::wstring_view kPattern = L"{########-####-####-####-############}"; // #: 0 to F

bool IsDigit(wchar_t character) {
    return (character >= L'0' && character <= L'9') || (character >= L'A' && character <= L'F');
}

} // namespace

std::wstring NewGuidText() {
    GUID id{};
    wchar_t text[kPattern.size() + 1] = L"";
    if (FAILED(CoCreateGuid(&id))) return {};
    return StringFromGUID2(id, text, static_cast<int>(std::size(text))) != 0 ? text : L"";
}

bool IsGuidText(const std::wstring& text) {
    return std::ranges::equal(kPattern, text, [](wchar_t expected, wchar_t character) {
        return expected == L'#' ? IsDigit(character) : expected == character;
    });
}

} // namespace providers
