#include "demo/mailpage/Attach.h"

#include <cstdio>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/StringList.h"

namespace mailpage {
namespace {

constexpr DWORD kFileRoom = 32000; // wide characters
constexpr wchar_t kAllFiles[] = L"All files|*.*";

std::wstring ResultText(HRESULT result) {
    wchar_t text[16];
    _snwprintf(text, 16, L"0x%08lX", static_cast<unsigned long>(result));
    return text;
}

OPENFILENAMEW MakeRequest(const Options& options, HWND owner, const std::wstring& filter,
                          std::vector<wchar_t>& files) {
    OPENFILENAMEW request{.lStructSize = sizeof(OPENFILENAMEW)};
    request.hwndOwner = owner;
    request.lpstrFilter = filter.c_str();
    request.nFilterIndex = 1;
    request.lpstrFile = files.data();
    request.nMaxFile = static_cast<DWORD>(files.size());
    request.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!options.single) request.Flags |= OFN_ALLOWMULTISELECT;
    return request;
}

void AskByOpenFileName(const HookedLibrary& library, const Options& options, HWND owner,
                       MailPageContext& context, AttachAnswer& answer) {
    std::vector<wchar_t> files(kFileRoom);
    const std::wstring filter = FilterList(options.filter);
    OPENFILENAMEW request = MakeRequest(options, owner, filter, files);
    const BOOL result = library.getOpenFileName(&request, &context);
    answer.answer = std::to_wstring(result);
    if (result) answer.paths = SplitFileList(files.data());
}

void AddPath(IShellItem* item, std::vector<std::wstring>& paths) {
    ObLib::UniqueCoTaskMemory<wchar_t> path;
    if (SUCCEEDED(item->GetDisplayName(SIGDN_FILESYSPATH, path.Put())))
        paths.emplace_back(path.Get());
}

void AddPaths(IShellItemArray* items, std::vector<std::wstring>& paths) {
    DWORD count = 0;
    items->GetCount(&count);
    for (DWORD index = 0; index < count; ++index) {
        ObLib::ComPtr<IShellItem> item;
        if (SUCCEEDED(items->GetItemAt(index, item.Put()))) AddPath(item.Get(), paths);
    }
}

// As a page's code asks: for the one file, or for all of them.
void ReadResults(const HookedLibrary& library, const Options& options, IFileDialog* dialog,
                 MailPageContext& context, AttachAnswer& answer) {
    if (options.single) {
        ObLib::ComPtr<IShellItem> item;
        if (library.getResult(dialog, item.Put(), &context) == S_OK && item)
            AddPath(item.Get(), answer.paths);
        return;
    }
    ObLib::ComPtr<IShellItemArray> items;
    if (library.getResults(dialog, items.Put(), &context) == S_OK && items)
        AddPaths(items.Get(), answer.paths);
}

void SetFileTypes(IFileDialog* dialog, const std::wstring& filter) {
    std::vector<COMDLG_FILTERSPEC> types;
    // Names and their patterns by turns; both end with a NUL in the list.
    std::vector<const wchar_t*> texts;
    ObLib::WalkList(filter, [&](std::wstring_view text) { texts.push_back(text.data()); });
    for (std::size_t at = 0; at + 1 < texts.size(); at += 2) {
        types.push_back({texts[at], texts[at + 1]});
    }
    dialog->SetFileTypes(static_cast<UINT>(types.size()), types.data());
}

void AskByDialog(const HookedLibrary& library, const Options& options, HWND owner,
                 MailPageContext& context, AttachAnswer& answer) {
    ObLib::ComPtr<IFileDialog> dialog;
    const HRESULT made = CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                                          IID_IFileDialog, reinterpret_cast<void**>(dialog.Put()));
    answer.answer = ResultText(made);
    if (FAILED(made)) return;
    const DWORD one = FOS_FORCEFILESYSTEM | FOS_FILEMUSTEXIST | FOS_PATHMUSTEXIST;
    dialog->SetOptions(options.single ? one : one | FOS_ALLOWMULTISELECT);
    SetFileTypes(dialog.Get(), FilterList(options.filter));
    const HRESULT shown = library.show(dialog.Get(), owner, &context);
    answer.answer = ResultText(shown);
    if (SUCCEEDED(shown)) ReadResults(library, options, dialog.Get(), context, answer);
}

} // namespace

AttachAnswer AskForFiles(const HookedLibrary& library, const Options& options, HWND owner) {
    MailPageContext context(options);
    AttachAnswer answer;
    if (options.entry == Entry::Dialog) {
        AskByDialog(library, options, owner, context, answer);
    } else {
        AskByOpenFileName(library, options, owner, context, answer);
    }
    answer.links = context.Links();
    answer.cleanup = context.Cleanup();
    answer.browserDialog = context.BrowserDialogAsked();
    return answer;
}

std::vector<std::wstring> SplitFileList(const wchar_t* list) {
    std::wstring folder = list;
    if (folder.empty()) return {};
    const wchar_t* name = list + folder.size() + 1;
    if (!*name) return {folder};
    if (folder.back() != L'\\') folder += L'\\';
    std::vector<std::wstring> paths;
    ObLib::WalkList({name, ObLib::ListLength(name)},
                    [&](std::wstring_view text) { paths.push_back(folder + std::wstring(text)); });
    return paths;
}

std::wstring FilterList(const std::wstring& text) {
    std::wstring list = text.empty() ? kAllFiles : text;
    for (wchar_t& unit : list) {
        if (unit == L'|') unit = L'\0';
    }
    // The list is closed by an empty string; the terminating NUL of the text is the second one.
    list.push_back(L'\0');
    return list;
}

} // namespace mailpage
