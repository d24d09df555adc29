#include "services/providers/storage/LinkPasswordDialog.h"

#include <commctrl.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/SecretClipboard.h"
#include "ObLib/Src/Win32/SecretField.h"
#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// What the dialog shows, while it lives; the caller's.
struct Shown {
    const std::wstring& fileName;
    const std::wstring& password;
};

// What the sentence has room for; without half a character at its end.
std::wstring ShortName(const std::wstring& name) {
    constexpr std::size_t kLongest = 60;
    if (name.size() <= kLongest) return name;
    const std::size_t length = IS_HIGH_SURROGATE(name[kLongest - 2]) ? kLongest - 2 : kLongest - 1;
    return name.substr(0, length) + L"\u2026";
}

HWND FieldOf(HWND dialog) { return GetDlgItem(dialog, OB_LINK_PASSWORD_TEXT); }

// The field itself copies without the marks that keep a password out of the clipboard's history, so
// that Ctrl+C and the field's menu do what the button does.
LRESULT CALLBACK CopyByTheButton(HWND field, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR) noexcept {
    if (message == WM_COPY) {
        const HWND button = GetDlgItem(GetParent(field), OB_LINK_PASSWORD_COPY);
        return SendMessageW(button, BM_CLICK, 0, 0);
    }
    if (message == WM_NCDESTROY) RemoveWindowSubclass(field, &CopyByTheButton, 0);
    return DefSubclassProc(field, message, wParam, lParam);
}

void Begin(HWND dialog, const Shown& shown) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&shown));
    SetDlgItemTextW(dialog, OB_LINK_PASSWORD_SENTENCE,
                    FormatOwnText(OB_TEXT_LINK_PASSWORD, {ShortName(shown.fileName)}).c_str());
    ObLib::PrepareSecretField(FieldOf(dialog));
    ObLib::FillSecretField(FieldOf(dialog), shown.password.c_str());
    if (!SetWindowSubclass(FieldOf(dialog), &CopyByTheButton, 0, 0)) {
        EnableWindow(FieldOf(dialog), FALSE); // nothing can be copied from it then
    }
    SetFocus(GetDlgItem(dialog, OB_LINK_PASSWORD_COPY)); // what most users need first
}

void Copy(HWND dialog, const Shown& shown) {
    const bool isCopied = ObLib::CopySecret(dialog, shown.password.c_str());
    SetDlgItemTextW(
        dialog, OB_LINK_PASSWORD_STATE,
        OwnText(isCopied ? OB_TEXT_LINK_PASSWORD_COPIED : OB_TEXT_LINK_PASSWORD_NOT_COPIED)
            .c_str());
}

INT_PTR OnCommand(HWND dialog, const Shown& shown, int control) {
    switch (control) {
    case OB_LINK_PASSWORD_COPY:
        Copy(dialog, shown);
        return TRUE;
    case IDOK:
    case IDCANCEL:
        EndDialog(dialog, IDOK);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        // One that can't be filled isn't shown.
        const auto& shown = *reinterpret_cast<const Shown*>(lParam);
        if (!ObLib::RanGuarded([&] { Begin(dialog, shown); })) EndDialog(dialog, IDABORT);
        return FALSE; // the button has the focus
    }
    if (message == WM_DESTROY) ObLib::WipeSecretField(FieldOf(dialog)); // however it ends
    const auto* const shown = reinterpret_cast<const Shown*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_COMMAND || !shown) return FALSE;
    const int control = LOWORD(wParam);
    return ObLib::Guarded(INT_PTR{FALSE}, [&] { return OnCommand(dialog, *shown, control); });
}

} // namespace

bool ShowLinkPassword(HWND owner, const std::wstring& fileName, const std::wstring& password) {
    const Shown shown{fileName, password};
    return DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(OB_LINK_PASSWORD_DIALOG),
                           IsWindow(owner) ? owner : nullptr, &Proc,
                           reinterpret_cast<LPARAM>(&shown)) == IDOK;
}

} // namespace providers
