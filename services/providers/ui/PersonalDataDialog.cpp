#include "services/providers/ui/PersonalDataDialog.h"

#include "services/providers/ui/PersonalDataDialogIds.h"
#include "services/providers/ui/SettingsBox.h"

namespace providers {
namespace {

void Show(HWND dialog, const PersonalDataSettings& settings) {
    CheckDlgButton(dialog, OB_PERSONAL_DATA_RECEIPT,
                   settings.showsReceipt ? BST_CHECKED : BST_UNCHECKED);
    CheckRadioButton(dialog, OB_PERSONAL_DATA_ASK, OB_PERSONAL_DATA_STOP,
                     settings.asksAboutRest ? OB_PERSONAL_DATA_ASK : OB_PERSONAL_DATA_STOP);
}

PersonalDataSettings Read(HWND dialog) {
    PersonalDataSettings settings;
    settings.showsReceipt = IsDlgButtonChecked(dialog, OB_PERSONAL_DATA_RECEIPT) == BST_CHECKED;
    settings.asksAboutRest = IsDlgButtonChecked(dialog, OB_PERSONAL_DATA_STOP) != BST_CHECKED;
    return settings;
}

// The settings are the caller's, who waits in AskForSettings while the dialog lives.
INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Show(dialog, *reinterpret_cast<const PersonalDataSettings*>(lParam));
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    auto* const settings =
        reinterpret_cast<PersonalDataSettings*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (LOWORD(wParam) == IDOK && settings) *settings = Read(dialog);
    if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return FALSE;
    EndDialog(dialog, LOWORD(wParam));
    return TRUE;
}

} // namespace

bool AskForSettings(HWND owner, PersonalDataSettings& settings) {
    return ShowSettingsBox(owner, OB_PERSONAL_DATA_DIALOG, &Proc, settings);
}

} // namespace providers
