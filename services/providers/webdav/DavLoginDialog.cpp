#include "services/providers/webdav/DavLoginDialog.h"

#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLib/Src/Win32/SecretField.h"
#include "services/providers/dav/DavAddress.h"
#include "services/providers/ui/FieldText.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/AccountPassword.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "services/providers/webdav/DialogTask.h"

namespace providers {
namespace {

constexpr UINT kChecked = WM_APP + 1;

// What is being checked.
struct Entered {
    HttpUrl typed;
    std::wstring user;
    ObLib::Secret password;
};

// The login while its dialog lives.
struct OpenLogin {
    DavLogin& login;
    Entered entered = {};
    std::optional<DialogTask<DavCheckResult>> check = {}; // nothing: none is running
};

HWND PasswordField(HWND dialog) { return GetDlgItem(dialog, OB_DAV_PASSWORD); }

void ShowState(HWND dialog, const std::wstring& text) {
    SetDlgItemTextW(dialog, OB_DAV_LOGIN_STATE, text.c_str());
}

// A screen reader follows the focus: what is to be read comes with it.
void FocusOn(HWND dialog, int field) {
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, field)), TRUE);
}

void Begin(HWND dialog, OpenLogin& open) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&open));
    const DavLogin& login = open.login;
    SendDlgItemMessageW(dialog, OB_DAV_ADDRESS, EM_LIMITTEXT, kLongestDavAddress, 0);
    SendDlgItemMessageW(dialog, OB_DAV_USER, EM_LIMITTEXT, kLongestDavUser, 0);
    SetDlgItemTextW(dialog, OB_DAV_ADDRESS, login.address.c_str());
    SetDlgItemTextW(dialog, OB_DAV_USER, login.user.c_str());
    ObLib::PrepareSecretField(PasswordField(dialog));
    ShowState(dialog, login.reason);
    for (const int id : {OB_DAV_ADDRESS, OB_DAV_USER}) {
        SendDlgItemMessageW(dialog, id, EM_SETREADONLY, login.isKnown, 0);
    }
    FocusOn(dialog, login.isKnown ? OB_DAV_PASSWORD : OB_DAV_ADDRESS);
}

void Refuse(HWND dialog, int field, const std::wstring& sentence) {
    ShowState(dialog, sentence);
    MessageBeep(MB_ICONWARNING);
    FocusOn(dialog, field);
}

void EnableFields(HWND dialog, bool isEnabled) {
    // A disabled control keeps no focus.
    if (!isEnabled) FocusOn(dialog, IDCANCEL);
    for (const int id : {OB_DAV_ADDRESS, OB_DAV_USER, OB_DAV_PASSWORD, static_cast<int>(IDOK)}) {
        EnableWindow(GetDlgItem(dialog, id), isEnabled);
    }
}

ObLib::Secret PasswordIn(HWND dialog) {
    ObLib::FieldText text;
    ObLib::ReadSecretField(PasswordField(dialog), text);
    ObLib::WipedBuffer<char, 3 * (ObLib::kLongestSecret + 1)> bytes;
    WideCharToMultiByte(CP_UTF8, 0, text.data, -1, bytes.data, sizeof bytes.data, nullptr, nullptr);
    return ObLib::Secret(bytes.data);
}

// What is in the fields. Nothing, with a sentence shown to the user, when it can't be used.
std::optional<Entered> TakeFields(HWND dialog) {
    const auto typed = TypedAddress(FieldText(dialog, OB_DAV_ADDRESS));
    Entered entered{{}, TrimmedText(dialog, OB_DAV_USER), PasswordIn(dialog)};
    if (!typed) {
        Refuse(dialog, OB_DAV_ADDRESS, OwnText(OB_TEXT_DAV_BAD_ADDRESS));
        return {};
    }
    entered.typed = *typed;
    if (!CanBeKept({HttpUrl{}, entered.user, {}, false})) {
        Refuse(dialog, OB_DAV_USER, OwnText(OB_TEXT_DAV_BAD_USER));
        return {};
    }
    const std::size_t size = entered.password.Bytes().size();
    if (size == 0 || size > kLongestAccountPassword) {
        const std::wstring room = std::to_wstring(kLongestAccountPassword);
        Refuse(dialog, OB_DAV_PASSWORD,
               size == 0 ? OwnText(OB_TEXT_DAV_NO_PASSWORD)
                         : FormatOwnText(OB_TEXT_DAV_LONG_PASSWORD, {room}));
        return {};
    }
    return entered;
}

void BeginCheck(HWND dialog, OpenLogin& open, Entered entered) {
    open.entered = std::move(entered);
    // First, as this may throw: the dialog stays usable then.
    open.check.emplace(dialog, kChecked,
                       [ask = open.login.check, entered = open.entered](HANDLE cancelled) {
                           return ask(entered.typed, entered.user, entered.password, cancelled);
                       });
    ShowState(dialog, OwnText(OB_TEXT_DAV_CHECKING));
    EnableFields(dialog, false);
}

void OnChecked(HWND dialog, OpenLogin& open) {
    auto result = open.check->TakeResult();
    open.check.reset();
    EnableFields(dialog, true);
    if (!result) result = DavCheckResult{OwnText(OB_TEXT_DAV_CHECK_FAILED), {}};
    if (!result->sentence.empty()) {
        const bool isAddress = result->isAboutAddress && !open.login.isKnown;
        const int field = isAddress ? OB_DAV_ADDRESS : OB_DAV_PASSWORD;
        Refuse(dialog, field, result->sentence);
        SendDlgItemMessageW(dialog, field, EM_SETSEL, 0, -1);
        return;
    }
    DavLogin& login = open.login;
    login.root = std::move(result->root);
    login.address = FieldText(dialog, OB_DAV_ADDRESS);
    login.user = std::move(open.entered.user);
    login.password = std::move(open.entered.password);
    EndDialog(dialog, IDOK);
}

INT_PTR OnCommand(HWND dialog, OpenLogin& open, int control) {
    if (control == IDCANCEL) {
        EndDialog(dialog, control);
        return TRUE;
    }
    // The Enter key reports OK also while the button is disabled.
    if (control != IDOK || open.check) return control == IDOK;
    if (auto entered = TakeFields(dialog)) BeginCheck(dialog, open, std::move(*entered));
    return TRUE;
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        ObLib::RanGuarded([&] { Begin(dialog, *reinterpret_cast<OpenLogin*>(lParam)); });
        return FALSE; // a field has the focus
    }
    if (message == WM_DESTROY) ObLib::WipeSecretField(PasswordField(dialog)); // however it ends
    auto* const open = reinterpret_cast<OpenLogin*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!open) return FALSE;
    return ObLib::Guarded(INT_PTR{FALSE}, [&]() -> INT_PTR {
        if (message == WM_COMMAND) return OnCommand(dialog, *open, LOWORD(wParam));
        if (message != kChecked) return FALSE;
        if (open->check && open->check->IsDone(wParam)) OnChecked(dialog, *open);
        return TRUE;
    });
}

} // namespace

bool ShowDavLogin(HWND owner, DavLogin& login) {
    OpenLogin open{login};
    const INT_PTR button =
        DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(OB_DAV_LOGIN_DIALOG),
                        IsWindow(owner) ? owner : nullptr, &Proc, reinterpret_cast<LPARAM>(&open));
    if (button == -1) ShowSentence(owner, OwnText(OB_TEXT_DAV_CHECK_FAILED));
    return button == IDOK;
}

} // namespace providers
