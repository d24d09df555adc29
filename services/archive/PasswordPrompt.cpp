#include "services/archive/PasswordPrompt.h"

#include <cwchar>

#include "services/archive/PasswordPromptIds.h"
#include "services/archive/Secret.h"

// The linker's name for the start of this module, which is also its handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace obarchive {
namespace {

// Above what any buffer of a caller takes, so that a text that is too long is seen as such and not
// cut by the edit field.
constexpr int kLongestText = 2047; // UTF-16 units
using FieldText = WipedBuffer<wchar_t, kLongestText + 1>;

struct Prompt {
    char* password;
    std::uint32_t capacity;
};

HINSTANCE ThisModule() { return reinterpret_cast<HINSTANCE>(&__ImageBase); }

void Read(HWND dialog, int field, FieldText& text) {
    GetDlgItemTextW(dialog, field, text.data, kLongestText + 1);
}

// The edit field keeps its text in memory of its own: it is overwritten before it is let go.
void WipeField(HWND dialog, int field) {
    FieldText text;
    Read(dialog, field, text);
    std::wmemset(text.data, L'*', std::wcslen(text.data));
    SetDlgItemTextW(dialog, field, text.data);
    SetDlgItemTextW(dialog, field, L"");
}

void ShowHint(HWND dialog, UINT text) {
    wchar_t sentence[256] = L"";
    if (text) LoadStringW(ThisModule(), text, sentence, 256);
    SetDlgItemTextW(dialog, OB_PASSWORD_HINT, sentence);
}

// OK wants two equal texts. A repetition that is right so far is not reproached.
void OnTextChanged(HWND dialog) {
    FieldText first;
    FieldText repeated;
    Read(dialog, OB_PASSWORD_FIRST, first);
    Read(dialog, OB_PASSWORD_REPEAT, repeated);
    const bool equal = std::wcscmp(first.data, repeated.data) == 0;
    const bool begun = std::wcsncmp(first.data, repeated.data, std::wcslen(repeated.data)) == 0;
    EnableWindow(GetDlgItem(dialog, IDOK), equal && first.data[0]);
    ShowHint(dialog, begun ? 0 : OB_TEXT_PASSWORDS_DIFFER);
}

void Refuse(HWND dialog, UINT text) {
    ShowHint(dialog, text);
    MessageBeep(MB_ICONWARNING);
    SendMessageW(dialog, WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(GetDlgItem(dialog, OB_PASSWORD_FIRST)), TRUE);
}

void OnOk(HWND dialog, const Prompt& prompt) {
    // The Enter key gets here also while the button is disabled.
    if (!IsWindowEnabled(GetDlgItem(dialog, IDOK))) return;
    FieldText text;
    Read(dialog, OB_PASSWORD_FIRST, text);
    const int bytes = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data, -1, nullptr, 0,
                                          nullptr, nullptr);
    if (bytes <= 0) return Refuse(dialog, OB_TEXT_PASSWORD_UNWRITABLE);
    if (static_cast<std::uint32_t>(bytes) > prompt.capacity) {
        return Refuse(dialog, OB_TEXT_PASSWORD_TOO_LONG);
    }
    WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data, -1, prompt.password, bytes,
                        nullptr, nullptr);
    EndDialog(dialog, static_cast<INT_PTR>(PromptResult::Given));
}

void OnInit(HWND dialog, LPARAM prompt) {
    SetWindowLongPtrW(dialog, DWLP_USER, prompt);
    for (const int field : {OB_PASSWORD_FIRST, OB_PASSWORD_REPEAT}) {
        SendDlgItemMessageW(dialog, field, EM_LIMITTEXT, kLongestText, 0);
    }
}

void OnCommand(HWND dialog, int id, int notification) {
    const auto* prompt = reinterpret_cast<Prompt*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (notification == EN_CHANGE && (id == OB_PASSWORD_FIRST || id == OB_PASSWORD_REPEAT)) {
        OnTextChanged(dialog);
    } else if (id == IDOK && notification == BN_CLICKED && prompt) {
        OnOk(dialog, *prompt);
    } else if (id == IDCANCEL && notification == BN_CLICKED) {
        EndDialog(dialog, static_cast<INT_PTR>(PromptResult::Cancelled));
    }
}

INT_PTR CALLBACK PromptProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    switch (message) {
    case WM_INITDIALOG:
        OnInit(dialog, lParam);
        return TRUE; // the first field gets the focus
    case WM_COMMAND:
        OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_DESTROY:
        // No more notifications: wiping changes the texts.
        SetWindowLongPtrW(dialog, DWLP_USER, 0);
        WipeField(dialog, OB_PASSWORD_FIRST);
        WipeField(dialog, OB_PASSWORD_REPEAT);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

PromptResult AskNewPassword(HWND owner, char* password, std::uint32_t capacity) {
    if (!password || capacity == 0) return PromptResult::NotShown;
    password[0] = '\0';
    Prompt prompt{password, capacity};
    // An owner that has gone meanwhile would keep the dialog from being made.
    const HWND parent = IsWindow(owner) ? owner : nullptr;
    const INT_PTR result = DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(OB_PASSWORD_PROMPT),
                                           parent, &PromptProc, reinterpret_cast<LPARAM>(&prompt));
    if (result == static_cast<INT_PTR>(PromptResult::Given)) return PromptResult::Given;
    return result == static_cast<INT_PTR>(PromptResult::Cancelled) ? PromptResult::Cancelled
                                                                   : PromptResult::NotShown;
}

} // namespace obarchive
