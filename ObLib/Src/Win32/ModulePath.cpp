#include "ObLib/Src/Win32/ModulePath.h"

// The linker's name for the start of the module, which is also its handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace ObLib {

HMODULE ThisModule() noexcept { return reinterpret_cast<HMODULE>(&__ImageBase); }

std::optional<std::wstring> ModulePath(HMODULE module, DWORD capacity) {
    std::wstring path(capacity, L'\0');
    const DWORD length = GetModuleFileNameW(module, path.data(), capacity);
    if (length == 0 || length >= capacity) return std::nullopt;
    path.resize(length);
    return path;
}

std::optional<std::wstring> ModuleFolder(HMODULE module, DWORD capacity) {
    std::optional<std::wstring> path = ModulePath(module, capacity);
    if (!path) return std::nullopt;
    const std::size_t separator = path->rfind(L'\\');
    if (separator == std::wstring::npos) return std::nullopt;
    path->resize(separator + 1);
    return path;
}

std::optional<std::wstring> PathBesideModule(HMODULE module, const wchar_t* fileName,
                                             DWORD capacity) {
    std::optional<std::wstring> path = ModuleFolder(module, capacity);
    if (!path) return std::nullopt;
    path->append(fileName);
    if (path->size() >= capacity) return std::nullopt;
    return path;
}

} // namespace ObLib
