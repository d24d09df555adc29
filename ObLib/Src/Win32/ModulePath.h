// Where a module's file is, and the files in its folder.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace ObLib {

// The longest path that the system has, in UTF-16 units with its NUL.
inline constexpr DWORD kLongestPathCapacity = 32768;

// The module that this code is linked into, whether a DLL or a program.
HMODULE ThisModule() noexcept;

// Full path of the module's file, that of the program for null. Nothing when the system doesn't
// return it whole in `capacity` units, its NUL included.
std::optional<std::wstring> ModulePath(HMODULE module, DWORD capacity = kLongestPathCapacity);

// The folder of that path, with its trailing backslash. Nothing also when the path has none.
std::optional<std::wstring> ModuleFolder(HMODULE module, DWORD capacity = kLongestPathCapacity);

// The path of `fileName` in that folder. Nothing also when the result doesn't fit `capacity` units,
// its NUL included. Doesn't check that the file is there.
std::optional<std::wstring> PathBesideModule(HMODULE module, const wchar_t* fileName,
                                             DWORD capacity = kLongestPathCapacity);

} // namespace ObLib
