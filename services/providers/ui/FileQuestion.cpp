#include "services/providers/ui/FileQuestion.h"

#include <commdlg.h>

#include <algorithm>

#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// Puts the process's current folder back at the end: the system's flag for that has no effect on
// the dialog that opens files, and a current folder that is changed stays in use.
class KeptFolder {
public:
    KeptFolder() : path_(GetCurrentDirectoryW(0, nullptr), L'\0') {
        path_.resize(GetCurrentDirectoryW(static_cast<DWORD>(path_.size()), path_.data()));
    }
    ~KeptFolder() {
        if (!path_.empty()) SetCurrentDirectoryW(path_.c_str());
    }
    KeptFolder(const KeptFolder&) = delete;
    KeptFolder& operator=(const KeptFolder&) = delete;

private:
    std::wstring path_;
};

std::wstring Ask(const FileQuestion& question, DWORD flags, BOOL(WINAPI* show)(OPENFILENAMEW*)) {
    const KeptFolder folder;
    std::wstring path(question.longest + 1, L'\0');
    question.name.copy(path.data(), question.longest);
    std::wstring filter = OwnText(question.filter);
    std::ranges::replace(filter, L'|', L'\0');
    OPENFILENAMEW dialog{sizeof dialog};
    dialog.hwndOwner = question.owner;
    dialog.lpstrFilter = filter.c_str();
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrDefExt = question.extension;
    dialog.Flags = OFN_EXPLORER | OFN_ENABLESIZING | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | flags;
    return show(&dialog) ? std::wstring(path.c_str()) : std::wstring();
}

} // namespace

std::wstring AskForFileToOpen(const FileQuestion& question) {
    return Ask(question, OFN_FILEMUSTEXIST, &GetOpenFileNameW);
}

std::wstring AskForFileToSave(const FileQuestion& question) {
    return Ask(question, OFN_PATHMUSTEXIST, &GetSaveFileNameW);
}

} // namespace providers
