// Where this library lies: its file, its folder, and the files that stand beside it.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace obcore {

// Size of the path buffers of the product, in wide characters; a path that fills it is truncated.
inline constexpr DWORD kPathCapacity = MAX_PATH;

// The module that the code runs in: the program module of AppGlobals(), set when the library was
// attached. Null in a program that set none, which then stands for the executable.
HMODULE OwnModule() noexcept;

// Full path of that module's file, or nothing when it can't be had whole in 260 characters.
std::optional<std::wstring> OwnModulePath();

// The path of `fileName` in the module's folder, or nothing when it doesn't fit 260 characters.
// Says nothing about whether the file is there.
std::optional<std::wstring> PathBesideOwnModule(const wchar_t* fileName);

} // namespace obcore
