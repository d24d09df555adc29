// Where the file of this library is, and the files in its folder.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace obcore {

// Size of the path buffers of the product, in wide characters; a path that fills it is truncated.
inline constexpr DWORD kPathCapacity = MAX_PATH;

// The module that the code runs in: the program module of AppGlobals(), set when the library was
// attached. Null in a program that set none; every call here then means the executable.
HMODULE OwnModule() noexcept;

// Full path of that module's file. Nothing when it doesn't fit 260 characters with its NUL.
std::optional<std::wstring> OwnModulePath();

// The path of `fileName` in the module's folder. Nothing when it doesn't fit 260 characters with
// its NUL. Doesn't check that the file is there.
std::optional<std::wstring> PathBesideOwnModule(const wchar_t* fileName);

} // namespace obcore
