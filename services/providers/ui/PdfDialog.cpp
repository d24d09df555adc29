#include "services/providers/ui/PdfDialog.h"

#include "services/providers/ui/PdfDialogIds.h"
#include "services/providers/ui/SettingsBox.h"

namespace providers {
namespace {

struct SwitchRow {
    int button;
    bool PdfSettings::*value;
};
constexpr SwitchRow kSwitches[] = {
    {OB_PDF_PICTURES, &PdfSettings::pictures},
    {OB_PDF_DOCUMENTS, &PdfSettings::documents},
};

int ButtonOf(PdfPage page) { return OB_PDF_AS_PICTURE + static_cast<int>(page); }

PdfSettings Read(HWND dialog) {
    PdfSettings settings;
    for (const SwitchRow& row : kSwitches) {
        settings.*row.value = IsDlgButtonChecked(dialog, row.button) == BST_CHECKED;
    }
    for (const PdfPageRow& row : kPdfPages) {
        if (IsDlgButtonChecked(dialog, ButtonOf(row.page)) == BST_CHECKED) settings.page = row.page;
    }
    return settings;
}

// Pages are chosen for pictures alone, and nothing can be converted without a kind.
void Enable(HWND dialog) {
    const PdfSettings settings = Read(dialog);
    for (const PdfPageRow& row : kPdfPages)
        EnableWindow(GetDlgItem(dialog, ButtonOf(row.page)), settings.pictures);
    EnableWindow(GetDlgItem(dialog, OB_PDF_PAGES), settings.pictures);
    EnableWindow(GetDlgItem(dialog, IDOK), settings.pictures || settings.documents);
}

void Show(HWND dialog, const PdfSettings& settings) {
    for (const SwitchRow& row : kSwitches) {
        CheckDlgButton(dialog, row.button, settings.*row.value ? BST_CHECKED : BST_UNCHECKED);
    }
    CheckRadioButton(dialog, OB_PDF_AS_PICTURE, OB_PDF_LETTER, ButtonOf(settings.page));
    Enable(dialog);
}

// The settings are the caller's, who waits in AskForSettings while the dialog lives.
INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Show(dialog, *reinterpret_cast<const PdfSettings*>(lParam));
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    auto* const settings = reinterpret_cast<PdfSettings*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (settings && HIWORD(wParam) == BN_CLICKED) Enable(dialog);
    // The Enter key reports OK also while the button is disabled.
    if (LOWORD(wParam) == IDOK && !IsWindowEnabled(GetDlgItem(dialog, IDOK))) return TRUE;
    if (LOWORD(wParam) == IDOK && settings) *settings = Read(dialog);
    if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return FALSE;
    EndDialog(dialog, LOWORD(wParam));
    return TRUE;
}

} // namespace

bool AskForSettings(HWND owner, PdfSettings& settings) {
    return ShowSettingsBox(owner, OB_PDF_DIALOG, &Proc, settings);
}

} // namespace providers
