#include "services/providers/folder/FolderDialog.h"

#include <memory>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "services/providers/folder/FolderBrowser.h"
#include "services/providers/folder/FolderDialogIds.h"
#include "services/providers/folder/FolderError.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/ui/FieldText.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/worker/DetachedThread.h"

namespace providers {
namespace {

constexpr UINT kChecked = WM_APP + 1; // from the thread of the check; its serial number, its result

// What an upload's place below the folder looks like.
constexpr wchar_t kExample[] = L"Quillbox\\20261231235959\\Photos.zip";

// The page while its dialog lives.
struct OpenPage {
    FolderPage& page;
    FolderSettings entered = {}; // that is being checked
    WPARAM check = 0;            // serial number of the check; a result of another one is late
    bool isChecking = false;
};

// Empty while one of the fields makes no link.
void ShowPreview(HWND dialog) {
    const std::wstring folder = FullFolderPath(FieldText(dialog, OB_FOLDER_PATH));
    const std::wstring pattern = TrimmedText(dialog, OB_FOLDER_PATTERN);
    const bool isShare = !folder.empty() && !IsOnDrive(folder);
    const bool makesLink = pattern.empty() ? isShare : IsLinkPattern(pattern);
    SetDlgItemTextW(dialog, OB_FOLDER_PREVIEW,
                    makesLink ? LinkOf(folder, pattern, kExample).c_str() : L"");
}

void Begin(HWND dialog, OpenPage& open) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&open));
    const FolderPage& page = open.page;
    SetWindowTextW(dialog, page.caption.c_str());
    SendDlgItemMessageW(dialog, OB_FOLDER_PATH, EM_LIMITTEXT, kLongestFolder, 0);
    SendDlgItemMessageW(dialog, OB_FOLDER_PATTERN, EM_LIMITTEXT, kLongestPattern, 0);
    SetDlgItemTextW(dialog, OB_FOLDER_PATH, page.settings.folder.c_str());
    SetDlgItemTextW(dialog, OB_FOLDER_PATTERN, page.settings.pattern.c_str());
    ShowWindow(GetDlgItem(dialog, OB_FOLDER_LOG_OUT), page.hasLogOut ? SW_SHOW : SW_HIDE);
    ShowPreview(dialog);
}

void Refuse(HWND dialog, int field, const std::wstring& sentence) {
    ShowSentence(dialog, sentence);
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, field)), TRUE);
}

void SetChecking(HWND dialog, OpenPage& open, bool isChecking) {
    open.isChecking = isChecking;
    const std::wstring status = isChecking ? OwnText(OB_TEXT_FOLDER_CHECKING) : std::wstring();
    SetDlgItemTextW(dialog, OB_FOLDER_STATUS, status.c_str());
    // A disabled control keeps no focus.
    if (isChecking) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, IDCANCEL)),
                     TRUE);
    }
    for (const int id :
         {OB_FOLDER_PATH, OB_FOLDER_BROWSE, OB_FOLDER_PATTERN, OB_FOLDER_LOG_OUT, IDOK}) {
        EnableWindow(GetDlgItem(dialog, id), !isChecking);
    }
}

// Takes the fields into `open`. False when they can't be used, after a message with the reason.
bool TakeFields(HWND dialog, OpenPage& open) {
    open.entered = {FullFolderPath(FieldText(dialog, OB_FOLDER_PATH)),
                    TrimmedText(dialog, OB_FOLDER_PATTERN)};
    if (open.entered.folder.empty()) {
        Refuse(dialog, OB_FOLDER_PATH, OwnText(OB_TEXT_FOLDER_NO_FULL_PATH));
        return false;
    }
    if (!open.entered.pattern.empty() && !IsLinkPattern(open.entered.pattern)) {
        Refuse(dialog, OB_FOLDER_PATTERN, OwnText(OB_TEXT_FOLDER_PATTERN));
        return false;
    }
    if (open.entered.pattern.empty() && IsOnDrive(open.entered.folder)) {
        Refuse(dialog, OB_FOLDER_PATTERN,
               FormatOwnText(OB_TEXT_FOLDER_NEEDS_PATTERN, {open.entered.folder}));
        return false;
    }
    const std::wstring why = open.page.refuse ? open.page.refuse(open.entered.folder) : L"";
    if (!why.empty()) Refuse(dialog, OB_FOLDER_PATH, why);
    return why.empty();
}

// A window that has gone takes no message, and the serial number names no other check.
void BeginCheck(HWND dialog, OpenPage& open) {
    static WPARAM serial = 0; // of all pages, which are on the thread of the dialogs
    open.check = ++serial;
    SetChecking(dialog, open, true);
    const bool isBegun = RunDetached(
        [dialog, number = serial, check = open.page.check, folder = open.entered.folder] {
            PostMessageW(dialog, kChecked, number, static_cast<LPARAM>(check(folder)));
        });
    if (!isBegun) PostMessageW(dialog, kChecked, serial, ERROR_OUTOFMEMORY);
}

UINT SentenceOf(DWORD error) {
    if (error == ERROR_DIRECTORY) return OB_TEXT_FOLDER_IS_FILE;
    switch (FolderErrorOf(error)) {
    case FolderError::Unreachable:
        return OB_TEXT_FOLDER_NOT_THERE;
    case FolderError::LoginNeeded:
        return OB_TEXT_FOLDER_LOGIN;
    case FolderError::Denied:
        return OB_TEXT_FOLDER_NOT_WRITABLE;
    case FolderError::Full:
    case FolderError::TooLarge:
        return OB_TEXT_FOLDER_NO_ROOM;
    case FolderError::Other:
        break;
    }
    return OB_TEXT_FOLDER_CHECK_FAILED;
}

void OnChecked(HWND dialog, OpenPage& open, DWORD error) {
    if (error == 0) {
        open.page.settings = open.entered;
        EndDialog(dialog, IDOK);
        return;
    }
    SetChecking(dialog, open, false);
    Refuse(dialog, OB_FOLDER_PATH,
           FormatOwnText(SentenceOf(error), {open.entered.folder, std::to_wstring(error)}));
}

void Browse(HWND dialog) {
    const auto folder = AskForFolder(dialog, FullFolderPath(FieldText(dialog, OB_FOLDER_PATH)));
    if (!folder) return Refuse(dialog, OB_FOLDER_PATH, OwnText(OB_TEXT_FOLDER_BROWSE_FAILED));
    if (!folder->empty()) SetDlgItemTextW(dialog, OB_FOLDER_PATH, folder->c_str());
}

INT_PTR OnCommand(HWND dialog, OpenPage& open, int control, int event) {
    switch (control) {
    case OB_FOLDER_PATH:
    case OB_FOLDER_PATTERN:
        if (event == EN_CHANGE) ShowPreview(dialog);
        return TRUE;
    case OB_FOLDER_BROWSE:
        Browse(dialog);
        return TRUE;
    case IDOK:
        // The Enter key reports OK also while the button is disabled.
        if (!open.isChecking && TakeFields(dialog, open)) BeginCheck(dialog, open);
        return TRUE;
    case IDCANCEL:
    case OB_FOLDER_LOG_OUT:
        EndDialog(dialog, control);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        ObLib::RanGuarded([&] { Begin(dialog, *reinterpret_cast<OpenPage*>(lParam)); });
        return TRUE; // the folder gets the focus
    }
    auto* const open = reinterpret_cast<OpenPage*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!open) return FALSE;
    return ObLib::Guarded(INT_PTR{FALSE}, [&]() -> INT_PTR {
        if (message == WM_COMMAND) return OnCommand(dialog, *open, LOWORD(wParam), HIWORD(wParam));
        if (message != kChecked) return FALSE;
        const bool isThisCheck = open->isChecking && wParam == open->check;
        if (isThisCheck) OnChecked(dialog, *open, static_cast<DWORD>(lParam));
        return TRUE;
    });
}

} // namespace

FolderPageEnd ShowFolderPage(HWND owner, FolderPage& page) {
    OpenPage open{page};
    const INT_PTR button =
        DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(OB_FOLDER_DIALOG),
                        IsWindow(owner) ? owner : nullptr, &Proc, reinterpret_cast<LPARAM>(&open));
    if (button == IDOK) return FolderPageEnd::Saved;
    return button == OB_FOLDER_LOG_OUT ? FolderPageEnd::LogOut : FolderPageEnd::Cancelled;
}

} // namespace providers
