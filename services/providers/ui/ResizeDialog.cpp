#include "services/providers/ui/ResizeDialog.h"

#include <cstddef>
#include <string>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/ui/ResizeDialogIds.h"
#include "services/providers/ui/SettingsBox.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

constexpr int kMostDigits = 6;

int ButtonOf(std::size_t aim) { return OB_RESIZE_EDGE + static_cast<int>(aim); }
int FieldOf(std::size_t aim) { return OB_RESIZE_EDGE_NUMBER + static_cast<int>(aim); }
int UnitOf(std::size_t aim) { return OB_RESIZE_EDGE_UNIT + static_cast<int>(aim); }

std::size_t ChosenAim(HWND dialog) {
    for (std::size_t aim = 0; aim < kResizeAimCount; ++aim) {
        if (IsDlgButtonChecked(dialog, ButtonOf(aim)) == BST_CHECKED) return aim;
    }
    return 0;
}

// Only the number of the chosen aim can be changed.
void EnableFields(HWND dialog) {
    const std::size_t chosen = ChosenAim(dialog);
    for (std::size_t aim = 0; aim < kResizeAimCount; ++aim) {
        EnableWindow(GetDlgItem(dialog, FieldOf(aim)), aim == chosen);
        EnableWindow(GetDlgItem(dialog, UnitOf(aim)), aim == chosen);
    }
}

// As the Tab key does: the text is selected, so that a user who types replaces it.
void FocusField(HWND dialog, std::size_t aim) {
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, FieldOf(aim))),
                 TRUE);
}

void Show(HWND dialog, const ResizeSettings& settings) {
    const auto chosen = static_cast<std::size_t>(settings.aim);
    for (std::size_t aim = 0; aim < kResizeAimCount; ++aim) {
        SendDlgItemMessageW(dialog, FieldOf(aim), EM_SETLIMITTEXT, kMostDigits, 0);
        SetDlgItemInt(dialog, FieldOf(aim), settings.numbers[aim], FALSE);
    }
    CheckRadioButton(dialog, OB_RESIZE_EDGE, OB_RESIZE_FIT, ButtonOf(chosen));
    EnableFields(dialog);
    FocusField(dialog, chosen);
}

std::optional<std::uint32_t> NumberIn(HWND dialog, std::size_t aim) {
    BOOL isNumber = FALSE;
    const UINT number = GetDlgItemInt(dialog, FieldOf(aim), &isNumber, FALSE);
    const ResizeAimRow& row = kResizeAims[aim];
    if (!isNumber || number < row.least || number > row.most) return {};
    return number;
}

// False, after a sentence and with the field ready to be corrected, when the number of the chosen
// aim can't be used. The others stay as they were, unless they can.
bool Read(HWND dialog, ResizeSettings& settings) {
    const std::size_t chosen = ChosenAim(dialog);
    if (!NumberIn(dialog, chosen)) {
        const ResizeAimRow& row = kResizeAims[chosen];
        ShowSentence(dialog, FormatOwnText(OB_TEXT_RESIZE_NUMBER, {std::to_wstring(row.least),
                                                                   std::to_wstring(row.most)}));
        FocusField(dialog, chosen);
        return false;
    }
    settings.aim = kResizeAims[chosen].aim;
    for (std::size_t aim = 0; aim < kResizeAimCount; ++aim) {
        settings.numbers[aim] = NumberIn(dialog, aim).value_or(settings.numbers[aim]);
    }
    return true;
}

bool OnCommand(HWND dialog, WORD command) {
    if (command >= OB_RESIZE_EDGE && command <= OB_RESIZE_FIT) {
        EnableFields(dialog);
        return true;
    }
    if (command != IDOK && command != IDCANCEL) return false;
    auto* const settings = reinterpret_cast<ResizeSettings*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (command == IDOK && settings && !Read(dialog, *settings)) return true;
    EndDialog(dialog, command);
    return true;
}

// The settings are the caller's, who waits in AskForSettings while the dialog lives.
INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Show(dialog, *reinterpret_cast<const ResizeSettings*>(lParam));
        return FALSE; // the focus is set
    }
    if (message != WM_COMMAND) return FALSE;
    return ObLib::Guarded(TRUE, [&] { return OnCommand(dialog, LOWORD(wParam)) ? TRUE : FALSE; });
}

} // namespace

bool AskForSettings(HWND owner, ResizeSettings& settings) {
    return ShowSettingsBox(owner, OB_RESIZE_DIALOG, &Proc, settings);
}

} // namespace providers
