#include "services/providers/webdav/PickerIcons.h"

#include <shellapi.h>

namespace providers {
namespace {

constexpr std::size_t kLongestExtension = 20; // a longer one is no kind of file

// With its point; empty without one.
std::wstring ExtensionOf(const std::wstring& name) {
    const std::size_t point = name.find_last_of(L'.');
    if (point == std::wstring::npos || name.size() - point > kLongestExtension) return {};
    std::wstring extension = name.substr(point);
    CharLowerW(extension.data());
    return extension;
}

// The list of icons is the return value. The name needn't exist.
HIMAGELIST Ask(const std::wstring& name, bool isFolder, SHFILEINFOW& info) {
    return reinterpret_cast<HIMAGELIST>(SHGetFileInfoW(
        name.c_str(), isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL, &info,
        sizeof info, SHGFI_USEFILEATTRIBUTES | SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
}

} // namespace

HIMAGELIST PickerIcons::List() {
    SHFILEINFOW info{};
    return Ask(L"folder", true, info);
}

int PickerIcons::IndexOf(const std::wstring& name, bool isFolder) {
    const std::wstring kind = isFolder ? L"/" : ExtensionOf(name);
    const auto known = known_.find(kind);
    if (known != known_.end()) return known->second;
    SHFILEINFOW info{};
    Ask(isFolder ? L"folder" : L"file" + kind, isFolder, info);
    return known_[kind] = info.iIcon;
}

} // namespace providers
