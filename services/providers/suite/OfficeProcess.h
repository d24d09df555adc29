// Which processes of an office program run, and whether the user sees one.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace providers {

// The ids of the processes that run the program with this full path, in ascending order. May throw
// std::bad_alloc.
std::vector<DWORD> ProcessesOf(const std::wstring& program);

// Those of `now` that aren't in `before`; both are in ascending order.
std::vector<DWORD> NewOf(const std::vector<DWORD>& before, const std::vector<DWORD>& now);

// Whether a process of this id shows a window that a user works in: a visible one at the top level
// that no other owns and that is no dialog. A hidden program shows at most a dialog. 0 has none.
bool HasUsersWindow(DWORD process) noexcept;

} // namespace providers
