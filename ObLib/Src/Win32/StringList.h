// Lists of texts that each end with a NUL, closed by an empty text, as many system calls take them.
#pragma once

#include <cwchar>
#include <string_view>

namespace ObLib {

// The first text of `list`, without its NUL: all of `list` when that has none. Never reads past the
// end of the view.
constexpr std::wstring_view FirstOfList(std::wstring_view list) noexcept {
    return list.substr(0, list.find(L'\0'));
}

// Moves `list` past its first text and the NUL of that.
constexpr void RemoveFirstOfList(std::wstring_view& list) noexcept {
    const std::size_t nul = list.find(L'\0');
    list.remove_prefix(nul == std::wstring_view::npos ? list.size() : nul + 1);
}

// Calls `visit` with each text up to the empty one that closes the list, or to the end of the view.
// Returns the units of the list, the closing NUL included if it is there.
template <class Visit>
constexpr std::size_t WalkList(std::wstring_view list, Visit visit) {
    const std::size_t size = list.size();
    for (auto text = FirstOfList(list); !text.empty(); text = FirstOfList(list)) {
        visit(text);
        RemoveFirstOfList(list);
    }
    RemoveFirstOfList(list);
    return size - list.size();
}

// Whether `test` is true of a text of a list whose end nobody gives. Reads nothing after the first
// such text.
template <class Test>
bool AnyOfList(const wchar_t* list, Test test) {
    for (std::wstring_view text = list; !text.empty(); text = text.data() + text.size() + 1) {
        if (test(text)) return true;
    }
    return false;
}

// Units of a list whose end nobody gives, from its first text through the closing NUL.
inline std::size_t ListLength(const wchar_t* list) noexcept {
    const wchar_t* end = list;
    while (*end != L'\0') end += std::wcslen(end) + 1;
    return static_cast<std::size_t>(end - list) + 1;
}

} // namespace ObLib
