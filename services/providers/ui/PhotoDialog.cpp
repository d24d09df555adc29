#include "services/providers/ui/PhotoDialog.h"

#include "services/providers/ui/PhotoDialogIds.h"
#include "services/providers/ui/SettingsBox.h"

namespace providers {
namespace {

struct SwitchRow {
    int button;
    bool PhotoSettings::*value;
};
constexpr SwitchRow kSwitches[] = {
    {OB_PHOTO_WEBP, &PhotoSettings::webp},
    {OB_PHOTO_TIFF, &PhotoSettings::tiff},
    {OB_PHOTO_BMP, &PhotoSettings::bmp},
};

int ButtonOf(PhotoQuality quality) { return OB_PHOTO_HIGH + static_cast<int>(quality); }

void Show(HWND dialog, const PhotoSettings& settings) {
    for (const SwitchRow& row : kSwitches) {
        CheckDlgButton(dialog, row.button, settings.*row.value ? BST_CHECKED : BST_UNCHECKED);
    }
    CheckRadioButton(dialog, OB_PHOTO_HIGH, OB_PHOTO_LOW, ButtonOf(settings.quality));
}

PhotoSettings Read(HWND dialog) {
    PhotoSettings settings;
    for (const SwitchRow& row : kSwitches) {
        settings.*row.value = IsDlgButtonChecked(dialog, row.button) == BST_CHECKED;
    }
    for (const PhotoQualityRow& row : kPhotoQualities) {
        if (IsDlgButtonChecked(dialog, ButtonOf(row.quality)) == BST_CHECKED) {
            settings.quality = row.quality;
        }
    }
    return settings;
}

// The settings are the caller's, who waits in AskForSettings while the dialog lives.
INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Show(dialog, *reinterpret_cast<const PhotoSettings*>(lParam));
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    auto* const settings = reinterpret_cast<PhotoSettings*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (LOWORD(wParam) == IDOK && settings) *settings = Read(dialog);
    if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return FALSE;
    EndDialog(dialog, LOWORD(wParam));
    return TRUE;
}

} // namespace

bool AskForSettings(HWND owner, PhotoSettings& settings) {
    return ShowSettingsBox(owner, OB_PHOTO_DIALOG, &Proc, settings);
}

} // namespace providers
