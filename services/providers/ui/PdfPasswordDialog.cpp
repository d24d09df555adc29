#include "services/providers/ui/PdfPasswordDialog.h"

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/SecretField.h"
#include "contracts/TransformWork.h"
#include "services/providers/ui/PdfPasswordDialogIds.h"

namespace providers {
namespace {

using obcontract::kMostPasswordBytes;

// The question while its dialog lives; the caller's.
struct Question {
    const std::wstring& sentence;
    ObLib::Secret& password;
    wchar_t dot = 0; // that hides a character
};

HWND FieldOf(HWND dialog) { return GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT); }

// Most bytes that a UTF-16 unit takes as UTF-8.
constexpr int kBytesOfUnit = 3;

// The format cuts a longer password at its limit.
ObLib::Secret Utf8Of(const ObLib::FieldText& text) {
    ObLib::WipedBuffer<char, kBytesOfUnit*(ObLib::kLongestSecret + 1)> bytes;
    WideCharToMultiByte(CP_UTF8, 0, text.data, -1, bytes.data, sizeof bytes.data, nullptr, nullptr);
    bytes.data[kMostPasswordBytes] = '\0';
    return ObLib::Secret(bytes.data);
}

void Take(HWND dialog, Question& question) {
    ObLib::FieldText text;
    ObLib::ReadSecretField(FieldOf(dialog), text);
    question.password = Utf8Of(text);
}

void Begin(HWND dialog, Question& question) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&question));
    SetDlgItemTextW(dialog, OB_PDF_PASSWORD_SENTENCE, question.sentence.c_str());
    const HWND field = FieldOf(dialog);
    question.dot = static_cast<wchar_t>(SendMessageW(field, EM_GETPASSWORDCHAR, 0, 0));
    ObLib::PrepareSecretField(field);
    SetFocus(field);
}

void ShowOrHide(HWND dialog, const Question& question) {
    const bool shows = IsDlgButtonChecked(dialog, OB_PDF_PASSWORD_SHOW) == BST_CHECKED;
    SendMessageW(FieldOf(dialog), EM_SETPASSWORDCHAR, shows ? 0 : question.dot, 0);
    InvalidateRect(FieldOf(dialog), nullptr, TRUE);
}

void End(HWND dialog, Question& question, int button) {
    if (button == IDOK) Take(dialog, question);
    EndDialog(dialog, button);
}

INT_PTR OnCommand(HWND dialog, Question& question, int control) {
    switch (control) {
    case OB_PDF_PASSWORD_TEXT:
        EnableWindow(GetDlgItem(dialog, IDOK), GetWindowTextLengthW(FieldOf(dialog)) > 0);
        return TRUE;
    case OB_PDF_PASSWORD_SHOW:
        ShowOrHide(dialog, question);
        return TRUE;
    case IDOK:
        // The Enter key reports OK also while the button is disabled.
        if (IsWindowEnabled(GetDlgItem(dialog, IDOK))) End(dialog, question, control);
        return TRUE;
    case IDCANCEL:
    case OB_PDF_PASSWORD_LEAVE:
        End(dialog, question, control);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        Begin(dialog, *reinterpret_cast<Question*>(lParam));
        return FALSE; // the field has the focus
    }
    if (message == WM_DESTROY) ObLib::WipeSecretField(FieldOf(dialog)); // however it ends
    auto* const question = reinterpret_cast<Question*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_COMMAND || !question) return FALSE;
    const int control = LOWORD(wParam);
    return ObLib::Guarded(INT_PTR{FALSE}, [&] { return OnCommand(dialog, *question, control); });
}

} // namespace

PasswordAnswer AskForPdfPassword(HWND owner, const std::wstring& sentence,
                                 ObLib::Secret& password) {
    Question question{sentence, password};
    const INT_PTR button = DialogBoxParamW(
        ObLib::ThisModule(), MAKEINTRESOURCEW(OB_PDF_PASSWORD_DIALOG),
        IsWindow(owner) ? owner : nullptr, &Proc, reinterpret_cast<LPARAM>(&question));
    if (button == IDOK && !password.Empty()) return PasswordAnswer::Given;
    return button == OB_PDF_PASSWORD_LEAVE ? PasswordAnswer::LeaveAsItIs
                                           : PasswordAnswer::Cancelled;
}

} // namespace providers
