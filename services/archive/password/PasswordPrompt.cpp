#include "services/archive/password/PasswordPrompt.h"

#include <commctrl.h>

#include <algorithm>
#include <cwchar>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/SecretClipboard.h"
#include "ObLib/Src/Win32/SecretField.h"
#include "services/archive/ThisModule.h"
#include "services/archive/password/PassPhrase.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "services/archive/password/PasswordStrength.h"
#include "services/archive/password/PromptHint.h"
#include "services/archive/policy/PasswordPolicy.h"
#include "services/archive/recovery/RecoveryKey.h"
#include "services/archive/texts/ProductTexts.h"
#include "services/archive/texts/ServiceTextIds.h"

namespace obarchive {
namespace {

using ObLib::FieldText;
using ObLib::FillSecretField;
using ObLib::PrepareSecretField;
using ObLib::ReadSecretField;
using ObLib::WipeSecretField;

constexpr int kFields[] = {OB_PASSWORD_FIRST, OB_PASSWORD_REPEAT};
constexpr int kFullBar = 90; // bits
constexpr UINT_PTR kCapsLockTimer = 1;
constexpr UINT kCapsLockInterval = 200; // milliseconds

struct Prompt {
    char* password;
    std::uint32_t capacity;
    PromptState state;
    WPARAM mask = 0;      // the character shown in place of each hidden one
    bool filling = false; // this code changes the fields, not the user
};

Prompt* PromptOf(HWND dialog) {
    return reinterpret_cast<Prompt*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

// Sets only a text that differs: setting the same one makes the label flicker and screen readers
// repeat it.
void SetText(HWND dialog, int id, const std::wstring& text) {
    wchar_t before[512] = L"";
    GetDlgItemTextW(dialog, id, before, 512);
    if (text != before) SetDlgItemTextW(dialog, id, text.c_str());
}

void ShowHint(HWND dialog, const Prompt& prompt) {
    SetText(dialog, OB_PASSWORD_HINT, HintText(prompt.state));
}

void ShowStrength(HWND dialog, std::wstring_view password) {
    const Strength strength = StrengthOf(password);
    const int filled = std::min(static_cast<int>(strength.bits), kFullBar);
    SendDlgItemMessageW(dialog, OB_PASSWORD_STRENGTH, PBM_SETPOS, static_cast<WPARAM>(filled), 0);
    const UINT text = OB_TEXT_STRENGTH_NONE + static_cast<UINT>(strength.level);
    SetText(dialog, OB_PASSWORD_STRENGTH_LABEL, OwnText(text));
}

bool HasCharacterBeyondAscii(std::wstring_view text) {
    return std::any_of(text.begin(), text.end(), [](wchar_t unit) { return unit >= 0x80; });
}

// OK needs two equal texts. A repetition that is right so far gets no message.
void ShowState(HWND dialog, Prompt& prompt) {
    FieldText first;
    FieldText repeated;
    ReadSecretField(GetDlgItem(dialog, OB_PASSWORD_FIRST), first);
    ReadSecretField(GetDlgItem(dialog, OB_PASSWORD_REPEAT), repeated);
    const bool equal = std::wcscmp(first.data, repeated.data) == 0;
    prompt.state.differ = std::wcsncmp(first.data, repeated.data, std::wcslen(repeated.data)) != 0;
    prompt.state.meetsPolicy =
        prompt.state.policy.AsksForNothing() || Meets(prompt.state.policy, first.data);
    prompt.state.beyondAscii = HasCharacterBeyondAscii(first.data);
    EnableWindow(GetDlgItem(dialog, IDOK), equal && first.data[0]);
    EnableWindow(GetDlgItem(dialog, OB_PASSWORD_COPY), prompt.state.phraseBits != 0);
    ShowStrength(dialog, first.data);
    ShowHint(dialog, prompt);
}

// Messages about the text before don't apply to the new one.
void OnTextChanged(HWND dialog, Prompt& prompt) {
    if (prompt.filling) return;
    prompt.state.problem = 0;
    prompt.state.phraseBits = 0;
    prompt.state.copied = false;
    ShowState(dialog, prompt);
}

void GoToFirstField(HWND dialog) {
    SendMessageW(dialog, WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(GetDlgItem(dialog, OB_PASSWORD_FIRST)), TRUE);
}

void Refuse(HWND dialog, Prompt& prompt, UINT text) {
    prompt.state.problem = text;
    ShowHint(dialog, prompt);
    MessageBeep(MB_ICONWARNING);
    GoToFirstField(dialog);
}

std::wstring TextOrOwn(UINT product, UINT own) {
    const std::wstring text = ProductText(product);
    return text.empty() ? OwnText(own) : text;
}

void ShowPolicyBox(HWND dialog, const PasswordPolicy& policy) {
    const std::wstring text =
        PolicyMessage(policy) + L"\n\n" + TextOrOwn(kModifyPasswordRequest, OB_TEXT_POLICY_REQUEST);
    const std::wstring caption = TextOrOwn(kPolicyErrorCaption, OB_TEXT_POLICY_CAPTION);
    MessageBoxW(dialog, text.c_str(), caption.c_str(), MB_OK | MB_ICONEXCLAMATION);
    GoToFirstField(dialog);
}

// The size as UTF-8 with its NUL; 0 when the text can't be converted.
std::uint32_t Utf8Size(const FieldText& text) {
    const int size = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data, -1, nullptr, 0,
                                         nullptr, nullptr);
    return static_cast<std::uint32_t>(std::max(size, 0));
}

// The id of the text with the reason why a password of this size isn't taken, 0 for one that is.
UINT RefusalOf(std::uint32_t size, std::uint32_t capacity) {
    if (size == 0) return OB_TEXT_PASSWORD_UNWRITABLE;
    if (size > kMostPasswordBytes + 1) return OB_TEXT_PASSWORD_OVER_99_BYTES;
    return size > capacity ? OB_TEXT_PASSWORD_TOO_LONG : 0;
}

// Asks about a very weak password; true for every other one at once.
bool IsWantedAllTheSame(HWND dialog, const FieldText& text) {
    if (StrengthOf(text.data).level != StrengthLevel::VeryWeak) return true;
    const std::wstring question = OwnText(OB_TEXT_VERY_WEAK_QUESTION);
    return MessageBoxW(dialog, question.c_str(), kProductCaption,
                       MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

void OnOk(HWND dialog, Prompt& prompt) {
    // The Enter key gets here also while the button is disabled.
    if (!IsWindowEnabled(GetDlgItem(dialog, IDOK))) return;
    FieldText text;
    ReadSecretField(GetDlgItem(dialog, OB_PASSWORD_FIRST), text);
    if (!Meets(prompt.state.policy, text.data)) return ShowPolicyBox(dialog, prompt.state.policy);
    const std::uint32_t size = Utf8Size(text);
    if (const UINT refusal = RefusalOf(size, prompt.capacity)) {
        return Refuse(dialog, prompt, refusal);
    }
    if (!IsWantedAllTheSame(dialog, text)) return GoToFirstField(dialog);
    WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data, -1, prompt.password,
                        static_cast<int>(size), nullptr, nullptr);
    EndDialog(dialog, static_cast<INT_PTR>(PromptResult::Given));
}

void ShowPassword(HWND dialog, const Prompt& prompt, bool shown) {
    CheckDlgButton(dialog, OB_PASSWORD_SHOW, shown ? BST_CHECKED : BST_UNCHECKED);
    for (const int field : kFields) {
        SendDlgItemMessageW(dialog, field, EM_SETPASSWORDCHAR, shown ? 0 : prompt.mask, 0);
        InvalidateRect(GetDlgItem(dialog, field), nullptr, TRUE);
    }
}

// Shows the phrase, as the user must be able to write it down.
void OnSuggest(HWND dialog, Prompt& prompt) {
    PhraseText phrase;
    prompt.state.phraseBits = MakePassPhrase(prompt.state.policy, phrase);
    prompt.state.copied = false;
    if (prompt.state.phraseBits == 0) return Refuse(dialog, prompt, OB_TEXT_NO_PHRASE);
    prompt.state.problem = 0;
    // The mask goes first: a field measures its text at the moment when the text is set.
    ShowPassword(dialog, prompt, true);
    prompt.filling = true;
    for (const int field : kFields) FillSecretField(GetDlgItem(dialog, field), phrase.data);
    prompt.filling = false;
    ShowState(dialog, prompt);
}

void OnCopy(HWND dialog, Prompt& prompt) {
    FieldText text;
    ReadSecretField(GetDlgItem(dialog, OB_PASSWORD_FIRST), text);
    prompt.state.copied = ObLib::CopySecret(dialog, text.data);
    prompt.state.problem = prompt.state.copied ? 0 : OB_TEXT_NOT_COPIED;
    ShowHint(dialog, prompt);
}

// Polled by a timer: no message comes when the key is pressed while another window has the focus.
void CheckCapsLock(HWND dialog, Prompt& prompt) {
    const bool on = (GetKeyState(VK_CAPITAL) & 1) != 0;
    if (on == prompt.state.capsLock) return;
    prompt.state.capsLock = on;
    ShowHint(dialog, prompt);
}

void OnInit(HWND dialog, LPARAM parameter) {
    for (const int field : kFields) PrepareSecretField(GetDlgItem(dialog, field));
    SetWindowLongPtrW(dialog, DWLP_USER, parameter);
    Prompt& prompt = *PromptOf(dialog);
    prompt.mask = static_cast<WPARAM>(
        SendDlgItemMessageW(dialog, OB_PASSWORD_FIRST, EM_GETPASSWORDCHAR, 0, 0));
    SendDlgItemMessageW(dialog, OB_PASSWORD_STRENGTH, PBM_SETRANGE32, 0, kFullBar);
    if (IsRecoverySetUp()) SetText(dialog, OB_PASSWORD_INTRO, OwnText(OB_TEXT_INTRO_RECOVERY));
    SetTimer(dialog, kCapsLockTimer, kCapsLockInterval, nullptr);
    CheckCapsLock(dialog, prompt);
    ShowState(dialog, prompt);
}

void OnClick(HWND dialog, Prompt& prompt, int id) {
    switch (id) {
    case OB_PASSWORD_SHOW:
        return ShowPassword(dialog, prompt, IsDlgButtonChecked(dialog, id) == BST_CHECKED);
    case OB_PASSWORD_SUGGEST:
        return OnSuggest(dialog, prompt);
    case OB_PASSWORD_COPY:
        return OnCopy(dialog, prompt);
    case IDOK:
        return OnOk(dialog, prompt);
    case IDCANCEL:
        EndDialog(dialog, static_cast<INT_PTR>(PromptResult::Cancelled));
        return;
    }
}

void OnCommand(HWND dialog, Prompt& prompt, int id, int notification) {
    const bool field = id == OB_PASSWORD_FIRST || id == OB_PASSWORD_REPEAT;
    if (field && notification == EN_CHANGE) OnTextChanged(dialog, prompt);
    if (!field && notification == BN_CLICKED) OnClick(dialog, prompt, id);
}

void OnDestroy(HWND dialog) {
    // Wiping changes the texts, which is no longer the user's doing: no notification is handled.
    SetWindowLongPtrW(dialog, DWLP_USER, 0);
    KillTimer(dialog, kCapsLockTimer);
    for (const int field : kFields) WipeSecretField(GetDlgItem(dialog, field));
}

bool Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    Prompt* const prompt = PromptOf(dialog);
    switch (message) {
    case WM_INITDIALOG:
        OnInit(dialog, lParam);
        return true; // the first field gets the focus
    case WM_COMMAND:
        if (prompt) OnCommand(dialog, *prompt, LOWORD(wParam), HIWORD(wParam));
        return true;
    case WM_TIMER:
        if (prompt) CheckCapsLock(dialog, *prompt);
        return true;
    case WM_DESTROY:
        OnDestroy(dialog);
        return true;
    default:
        return false;
    }
}

INT_PTR CALLBACK PromptProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    // Out of memory: the prompt can't go on.
    return ObLib::GuardedElse([=]() -> INT_PTR { return Handle(dialog, message, wParam, lParam); },
                              [dialog]() -> INT_PTR {
                                  EndDialog(dialog, static_cast<INT_PTR>(PromptResult::NotShown));
                                  return TRUE;
                              });
}

} // namespace

PromptResult AskNewPassword(HWND owner, char* password, std::uint32_t capacity) {
    if (!password || capacity == 0) return PromptResult::NotShown;
    password[0] = '\0';
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    Prompt prompt{password, capacity, {}};
    prompt.state.policy = ReadPasswordPolicy();
    // With an owner that no longer exists, the dialog would fail to open.
    const HWND parent = IsWindow(owner) ? owner : nullptr;
    const INT_PTR result = DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(OB_PASSWORD_PROMPT),
                                           parent, &PromptProc, reinterpret_cast<LPARAM>(&prompt));
    if (result == static_cast<INT_PTR>(PromptResult::Given)) return PromptResult::Given;
    // The copied password protects nothing.
    ObLib::ForgetCopiedSecret();
    return result == static_cast<INT_PTR>(PromptResult::Cancelled) ? PromptResult::Cancelled
                                                                   : PromptResult::NotShown;
}

} // namespace obarchive
