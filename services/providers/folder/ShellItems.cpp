#include "services/providers/folder/ShellItems.h"

namespace providers {

using ObLib::ComPtr;

ComPtr<IFileOpenDialog> MakeOpenDialog() {
    ComPtr<IFileOpenDialog> dialog;
    CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileOpenDialog,
                     reinterpret_cast<void**>(dialog.Put()));
    return dialog;
}

ComPtr<IShellItem> ShellItemAt(const std::wstring& path) {
    ComPtr<IShellItem> item;
    SHCreateItemFromParsingName(path.c_str(), nullptr, IID_IShellItem,
                                reinterpret_cast<void**>(item.Put()));
    return item;
}

std::wstring PathOf(IShellItem& item) {
    ObLib::UniqueResource<ObLib::CoTaskMemoryPolicy<wchar_t>> path;
    if (FAILED(item.GetDisplayName(SIGDN_FILESYSPATH, path.Put()))) return {};
    return path.Get();
}

std::vector<std::wstring> ChosenPaths(IFileOpenDialog& dialog) {
    ComPtr<IShellItemArray> items;
    DWORD count = 0;
    if (FAILED(dialog.GetResults(items.Put())) || FAILED(items->GetCount(&count))) return {};
    std::vector<std::wstring> paths;
    for (DWORD index = 0; index < count; ++index) {
        ComPtr<IShellItem> item;
        const bool isThere = SUCCEEDED(items->GetItemAt(index, item.Put()));
        paths.push_back(isThere ? PathOf(*item.Get()) : std::wstring());
    }
    return paths;
}

} // namespace providers
