#include "services/providers/ui/ReceiptDialog.h"

#include <algorithm>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "services/providers/ui/SaveList.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

constexpr INT_PTR kNotShown = -1; // also the system's result for a dialog that it can't make

struct Receipt {
    std::wstring headline;
    std::wstring list;
    bool isQuestion; // there are files that can't be cleaned
};

// Makes Stop the default button and focuses it when there is a question; Attach otherwise.
void ShowDefault(HWND dialog, const Receipt& receipt) {
    const int button = receipt.isQuestion ? IDCANCEL : IDOK;
    SendMessageW(dialog, DM_SETDEFID, static_cast<WPARAM>(button), 0);
    SetFocus(GetDlgItem(dialog, button));
}

// Without the icon the headline begins at the list's left edge.
void MoveHeadline(HWND dialog) {
    const HWND headline = GetDlgItem(dialog, OB_RECEIPT_HEADLINE);
    RECT text;
    RECT list;
    GetWindowRect(headline, &text);
    GetWindowRect(GetDlgItem(dialog, OB_RECEIPT_LIST), &list);
    text.left = list.left;
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&text), 2);
    MoveWindow(headline, text.left, text.top, text.right - text.left, text.bottom - text.top, TRUE);
}

void ShowIcon(HWND dialog, const Receipt& receipt) {
    const HWND place = GetDlgItem(dialog, OB_RECEIPT_ICON);
    if (receipt.isQuestion) {
        const HICON icon = LoadIconW(nullptr, IDI_WARNING); // the system's own
        SendMessageW(place, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
        return;
    }
    ShowWindow(place, SW_HIDE);
    MoveHeadline(dialog);
}

void Show(HWND dialog, const Receipt& receipt) {
    SetDlgItemTextW(dialog, OB_RECEIPT_HEADLINE, receipt.headline.c_str());
    SetDlgItemTextW(dialog, OB_RECEIPT_LIST, receipt.list.c_str());
    if (receipt.isQuestion) {
        SetDlgItemTextW(dialog, IDOK, OwnText(OB_TEXT_RECEIPT_ATTACH_ANYWAY).c_str());
    }
    ShowIcon(dialog, receipt);
    ShowDefault(dialog, receipt);
}

void OnCommand(HWND dialog, WORD command) {
    const auto* const receipt =
        reinterpret_cast<const Receipt*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!receipt) return;
    if (command == OB_RECEIPT_SAVE) SaveList(dialog, receipt->headline, receipt->list);
    if (command == IDOK || command == IDCANCEL) EndDialog(dialog, command);
}

// The receipt is the caller's, who waits in ShowReceipt while the dialog lives.
INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        // The user must not be asked to attach files on the strength of half a list.
        if (!ObLib::RanGuarded([&] { Show(dialog, *reinterpret_cast<const Receipt*>(lParam)); })) {
            EndDialog(dialog, kNotShown);
        }
        return FALSE; // the focus is set
    }
    if (message != WM_COMMAND) return FALSE;
    ObLib::RanGuarded([&] { OnCommand(dialog, LOWORD(wParam)); });
    return TRUE;
}

} // namespace

bool ShowReceipt(HWND owner, const std::vector<ReceiptFile>& files, bool onlyRest) {
    const Receipt receipt{ReceiptHeadline(files), ReceiptList(files, onlyRest),
                          std::ranges::any_of(files, &ReceiptFile::IsRest)};
    const HWND living = IsWindow(owner) ? owner : nullptr;
    const INT_PTR button = DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(OB_RECEIPT_DIALOG),
                                           living, &Proc, reinterpret_cast<LPARAM>(&receipt));
    if (button == kNotShown) ShowSentence(living, OwnText(OB_TEXT_NO_RECEIPT));
    return button == IDOK;
}

} // namespace providers
