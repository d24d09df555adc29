#include "OBCore/options/SeparatedList.h"

#include <windows.h>

namespace obcore {
namespace {

std::wstring_view WithoutBlanks(std::wstring_view text) {
    const std::size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

// Ordinal, so that the verdict doesn't hang on the user's locale.
bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

} // namespace

bool HasItem(std::wstring_view list, wchar_t separator, std::wstring_view item) {
    for (;;) {
        const std::size_t end = list.find(separator);
        const std::wstring_view candidate = WithoutBlanks(list.substr(0, end));
        if (!candidate.empty() && EqualIgnoringCase(candidate, item)) return true;
        if (end == std::wstring_view::npos) return false;
        list.remove_prefix(end + 1);
    }
}

} // namespace obcore
