#include "OBCore/picker/ShellDialog.h"

#include <utility>

#include "OBCore/modules/TraceFailure.h"

namespace obcore {
namespace {

// Empty for an item that isn't in the file system.
std::wstring FileSystemPath(IShellItemArray& items, DWORD index) {
    ObLib::ComPtr<IShellItem> item;
    if (FAILED(TraceFailure("GetItemAt", items.GetItemAt(index, item.Put()))) || !item) return {};
    ObLib::UniqueCoTaskMemory<wchar_t> path;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, path.Put())) || !path) return {};
    return path.Get();
}

} // namespace

HRESULT CreateShellDialog(ObLib::ComPtr<IFileOpenDialog>& dialog) {
    void** const out = reinterpret_cast<void**>(dialog.Put());
    return TraceFailure("CoCreateInstance",
                        CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                                         IID_IFileOpenDialog, out));
}

bool CollectPickedPaths(IFileOpenDialog& dialog, std::vector<std::wstring>& paths,
                        std::wstring& last) {
    ObLib::ComPtr<IShellItemArray> items;
    if (FAILED(TraceFailure("GetResults", dialog.GetResults(items.Put())))) return false;
    DWORD count = 0;
    if (!items || FAILED(TraceFailure("GetCount", items->GetCount(&count)))) return true;
    for (DWORD index = 0; index < count; ++index) {
        std::wstring path = FileSystemPath(*items.Get(), index);
        if (path.empty()) continue;
        last = path;
        paths.push_back(std::move(path));
    }
    return true;
}

} // namespace obcore
