#include "services/providers/files/ResultName.h"

#include <windows.h>

namespace providers {
namespace {

// Of the extension's dot, or the end of a name without one. A name that begins with its only dot is
// no extension.
std::size_t EndOfStem(const std::wstring& path) {
    const std::size_t slash = path.rfind(L'\\');
    const std::size_t name = slash == std::wstring::npos ? 0 : slash + 1;
    const std::size_t dot = path.rfind(L'.');
    return dot == std::wstring::npos || dot <= name ? path.size() : dot;
}

} // namespace

std::wstring ResultPath(const std::wstring& path, const std::wstring& extension, int number) {
    std::wstring result = path.substr(0, EndOfStem(path));
    if (number > 1) result += L" (" + std::to_wstring(number) + L')';
    return result + L'.' + extension;
}

bool HasExtension(const std::wstring& path, const std::wstring& extension) {
    const std::size_t dot = EndOfStem(path);
    if (dot == path.size()) return false;
    const std::wstring own = path.substr(dot + 1);
    return CompareStringOrdinal(own.data(), static_cast<int>(own.size()), extension.data(),
                                static_cast<int>(extension.size()), TRUE) == CSTR_EQUAL;
}

} // namespace providers
