#include "services/providers/folder/FolderBrowser.h"

#include "services/providers/folder/ReachableFolders.h"
#include "services/providers/folder/ShellItems.h"
#include "services/providers/folder/ShellThread.h"

namespace providers {
namespace {

constexpr ReachLimits kLimits{2'000, 2'000};

void BeginIn(IFileOpenDialog& dialog, const std::wstring& first) {
    if (first.empty() || !ReachableFolders({first}, kLimits)[0]) return;
    const auto folder = ShellItemAt(first);
    if (folder) dialog.SetFolder(folder.Get());
}

std::optional<std::wstring> Ask(HWND owner, const std::wstring& first) {
    const auto dialog = MakeOpenDialog();
    FILEOPENDIALOGOPTIONS options = 0;
    if (!dialog || FAILED(dialog->GetOptions(&options))) return {};
    dialog->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR);
    BeginIn(*dialog.Get(), first);
    const HRESULT shown = dialog->Show(owner);
    if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED)) return std::wstring();
    ObLib::ComPtr<IShellItem> chosen;
    if (FAILED(shown) || FAILED(dialog->GetResult(chosen.Put()))) return {};
    return PathOf(*chosen.Get());
}

} // namespace

std::optional<std::wstring> AskForFolder(HWND owner, const std::wstring& first) {
    std::optional<std::wstring> folder;
    RunOnShellThread(owner, [&] { folder = Ask(owner, first); });
    return folder;
}

} // namespace providers
