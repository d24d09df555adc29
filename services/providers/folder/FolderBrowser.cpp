#include "services/providers/folder/FolderBrowser.h"

#include "services/providers/folder/ShellItems.h"
#include "services/providers/folder/ShellThread.h"

namespace providers {
namespace {

std::wstring Ask(HWND owner, const std::wstring& first) {
    const auto dialog = MakeOpenDialog();
    FILEOPENDIALOGOPTIONS options = 0;
    if (!dialog || FAILED(dialog->GetOptions(&options))) return {};
    dialog->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR);
    const auto folder = first.empty() ? ObLib::ComPtr<IShellItem>() : ShellItemAt(first);
    if (folder) dialog->SetFolder(folder.Get());
    ObLib::ComPtr<IShellItem> chosen;
    if (FAILED(dialog->Show(owner)) || FAILED(dialog->GetResult(chosen.Put()))) return {};
    return PathOf(*chosen.Get());
}

} // namespace

std::wstring AskForFolder(HWND owner, const std::wstring& first) {
    std::wstring folder;
    RunOnShellThread(owner, [&] { folder = Ask(owner, first); });
    return folder;
}

} // namespace providers
