#include "OBCore/settings/DialogItems.h"

namespace obcore {

std::wstring ItemText(HWND dialog, int id) {
    const HWND item = GetDlgItem(dialog, id);
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(item)), L'\0');
    const int copied = GetWindowTextW(item, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<std::size_t>(copied));
    return text;
}

bool IsChecked(HWND dialog, int id) { return IsDlgButtonChecked(dialog, id) == BST_CHECKED; }

void SetChecked(HWND dialog, int id, bool isChecked) {
    CheckDlgButton(dialog, id, isChecked ? BST_CHECKED : BST_UNCHECKED);
}

void CheckOneOf(HWND dialog, std::span<const int> radios, int chosen) {
    for (const int radio : radios) SetChecked(dialog, radio, radio == chosen);
}

void SetEnabled(HWND dialog, int id, bool isEnabled) {
    EnableWindow(GetDlgItem(dialog, id), isEnabled ? TRUE : FALSE);
}

} // namespace obcore
