#include "services/providers/webdav/DavPage.h"

#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/ui/FieldText.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/DavLinks.h"
#include "services/providers/webdav/DavPageIds.h"
#include "services/providers/webdav/DialogTask.h"
#include "services/providers/webdav/LinkPassword.h"

namespace providers {
namespace {

constexpr UINT kAnswered = WM_APP + 1;

// What an upload's place below the account's folder looks like.
constexpr char kExample[] = "Quillbox/20261231235959/Photos.zip";

// What is known of the server.
enum class Links : std::uint8_t { Asking, ByServer, ByPattern, Unknown };

// The page while its dialog lives.
struct OpenPage {
    DavPage& page;
    std::optional<DialogTask<DavLinkRules>> question = {}; // nothing: it was answered
    Links links = Links::Asking;
    DavLinkRules answer = {};
};

void Show(HWND dialog, int id, const std::wstring& text) {
    SetDlgItemTextW(dialog, id, text.c_str());
}

void ShowPreview(HWND dialog, const OpenPage& open) {
    DavSettings settings = open.page.settings;
    settings.pattern = TrimmedText(dialog, OB_DAV_PAGE_PATTERN);
    HttpUrl example = settings.root;
    example.path += kExample;
    std::wstring text;
    if (open.links == Links::ByServer) {
        text = OwnText(OB_TEXT_DAV_PREVIEW_BY_SERVER);
    } else if (IsLinkPattern(settings.pattern)) {
        text = LinkByPattern(settings, example);
    }
    Show(dialog, OB_DAV_PAGE_PREVIEW, text);
}

std::wstring RulesText(const OpenPage& open) {
    switch (open.links) {
    case Links::Asking:
        return OwnText(OB_TEXT_DAV_ASKING_LINKS);
    case Links::Unknown:
        return open.answer.sentence;
    case Links::ByPattern:
        return OwnText(OB_TEXT_DAV_PATTERN_LINKS);
    case Links::ByServer:
        break;
    }
    const ShareRules& rules = *open.answer.rules;
    std::wstring text = OwnText(OB_TEXT_DAV_SERVER_LINKS);
    if (rules.needsExpiry && rules.expiryDays) {
        const int days = *rules.expiryDays;
        text += L" " +
                (days == 1 ? OwnText(OB_TEXT_DAV_SERVER_ENDS_LINKS_NEXT_DAY)
                           : FormatOwnText(OB_TEXT_DAV_SERVER_ENDS_LINKS, {std::to_wstring(days)}));
    }
    return text;
}

// The check box for passwords.
struct PasswordBox {
    bool isFree;    // the user decides
    bool isChecked; // at first
    UINT note;
};

PasswordBox PasswordBoxOf(const OpenPage& open) {
    const bool isWanted = open.page.settings.hasLinkPasswords;
    if (IsLinkPasswordPolicyOn()) return {false, true, OB_TEXT_DAV_PASSWORD_BY_POLICY};
    // A wish that can't be met is the user's to take back, and nobody else's.
    if (open.links == Links::ByPattern)
        return {isWanted, isWanted, OB_TEXT_DAV_PASSWORD_BY_PATTERN};
    const bool isByServer = open.links == Links::ByServer && open.answer.rules->needsPassword;
    if (isByServer) return {false, true, OB_TEXT_DAV_PASSWORD_BY_SERVER};
    return {true, isWanted, OB_TEXT_DAV_PASSWORD_NOTE};
}

void ShowPasswords(HWND dialog, const OpenPage& open) {
    const PasswordBox box = PasswordBoxOf(open);
    EnableWindow(GetDlgItem(dialog, OB_DAV_PAGE_PASSWORDS), box.isFree);
    CheckDlgButton(dialog, OB_DAV_PAGE_PASSWORDS, box.isChecked ? BST_CHECKED : BST_UNCHECKED);
    Show(dialog, OB_DAV_PAGE_PASSWORDS_NOTE, OwnText(box.note));
}

// A disabled control keeps no focus.
void EnablePattern(HWND dialog, bool isEnabled) {
    const HWND field = GetDlgItem(dialog, OB_DAV_PAGE_PATTERN);
    if (!isEnabled && GetFocus() == field) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, IDOK)),
                     TRUE);
    }
    for (const int id :
         {OB_DAV_PAGE_PATTERN_LABEL, OB_DAV_PAGE_PATTERN, OB_DAV_PAGE_PATTERN_NOTE}) {
        EnableWindow(GetDlgItem(dialog, id), isEnabled);
    }
}

void ShowLinks(HWND dialog, const OpenPage& open) {
    Show(dialog, OB_DAV_PAGE_RULES, RulesText(open));
    ShowPasswords(dialog, open);
    EnablePattern(dialog, open.links != Links::ByServer);
    ShowPreview(dialog, open);
}

void OnAnswered(HWND dialog, OpenPage& open) {
    // What the user has chosen meanwhile stays.
    DavSettings& settings = open.page.settings;
    if (IsWindowEnabled(GetDlgItem(dialog, OB_DAV_PAGE_PASSWORDS))) {
        settings.hasLinkPasswords =
            IsDlgButtonChecked(dialog, OB_DAV_PAGE_PASSWORDS) == BST_CHECKED;
    }
    auto answer = open.question->TakeResult();
    open.question.reset();
    open.answer = answer ? std::move(*answer) : DavLinkRules{{}, OwnText(OB_TEXT_DAV_CHECK_FAILED)};
    const bool makesLinks = open.answer.rules && open.answer.rules->canShareByLink;
    open.links = makesLinks                     ? Links::ByServer
                 : open.answer.sentence.empty() ? Links::ByPattern
                                                : Links::Unknown;
    ShowLinks(dialog, open);
}

void Begin(HWND dialog, OpenPage& open) {
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&open));
    const DavSettings& settings = open.page.settings;
    Show(dialog, OB_DAV_PAGE_SERVER, FromUtf8(HttpUrlText(settings.root)).value_or(L""));
    Show(dialog, OB_DAV_PAGE_USER, settings.user);
    SendDlgItemMessageW(dialog, OB_DAV_PAGE_PATTERN, EM_LIMITTEXT, kLongestPattern, 0);
    Show(dialog, OB_DAV_PAGE_PATTERN, settings.pattern);
    ShowWindow(GetDlgItem(dialog, OB_DAV_PAGE_LOG_OUT), open.page.hasLogOut ? SW_SHOW : SW_HIDE);
    ShowLinks(dialog, open);
    SendMessageW(dialog, WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(GetDlgItem(dialog, OB_DAV_PAGE_PATTERN)), TRUE);
    open.question.emplace(dialog, kAnswered, open.page.ask);
}

void Refuse(HWND dialog, const std::wstring& sentence) {
    ShowSentence(dialog, sentence);
    SendMessageW(dialog, WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(GetDlgItem(dialog, OB_DAV_PAGE_PATTERN)), TRUE);
}

// Why these settings can't be used; empty when they can.
std::wstring RefusalOf(const OpenPage& open, const DavSettings& entered) {
    if (!entered.pattern.empty() && !IsLinkPattern(entered.pattern)) {
        return OwnText(OB_TEXT_FOLDER_PATTERN);
    }
    if (open.links != Links::ByPattern) return {};
    const LinkPlan plan = PlanLinks(entered, {});
    if (plan.way != LinkWay::None) return {};
    const bool isPasswordWanted = entered.hasLinkPasswords || IsLinkPasswordPolicyOn();
    return isPasswordWanted ? plan.sentence : OwnText(OB_TEXT_DAV_PATTERN_NEEDED);
}

void Save(HWND dialog, OpenPage& open) {
    DavSettings entered = open.page.settings;
    entered.pattern = TrimmedText(dialog, OB_DAV_PAGE_PATTERN);
    if (PasswordBoxOf(open).isFree) {
        entered.hasLinkPasswords = IsDlgButtonChecked(dialog, OB_DAV_PAGE_PASSWORDS) == BST_CHECKED;
    }
    const std::wstring refusal = RefusalOf(open, entered);
    if (!refusal.empty()) {
        Refuse(dialog, refusal);
        return;
    }
    open.page.settings = std::move(entered);
    EndDialog(dialog, IDOK);
}

INT_PTR OnCommand(HWND dialog, OpenPage& open, int control, int event) {
    switch (control) {
    case OB_DAV_PAGE_PATTERN:
        if (event == EN_CHANGE) ShowPreview(dialog, open);
        return TRUE;
    case IDOK:
        Save(dialog, open);
        return TRUE;
    case IDCANCEL:
    case OB_DAV_PAGE_LOG_OUT:
        EndDialog(dialog, control);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        ObLib::RanGuarded([&] { Begin(dialog, *reinterpret_cast<OpenPage*>(lParam)); });
        return FALSE; // a field has the focus
    }
    auto* const open = reinterpret_cast<OpenPage*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!open) return FALSE;
    return ObLib::Guarded(INT_PTR{FALSE}, [&]() -> INT_PTR {
        if (message == WM_COMMAND) return OnCommand(dialog, *open, LOWORD(wParam), HIWORD(wParam));
        if (message != kAnswered) return FALSE;
        if (open->question && open->question->IsDone(wParam)) OnAnswered(dialog, *open);
        return TRUE;
    });
}

} // namespace

DavPageEnd ShowDavPage(HWND owner, DavPage& page) {
    OpenPage open{page};
    const INT_PTR button =
        DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(OB_DAV_PAGE_DIALOG),
                        IsWindow(owner) ? owner : nullptr, &Proc, reinterpret_cast<LPARAM>(&open));
    if (button == -1) ShowSentence(owner, OwnText(OB_TEXT_DAV_CHECK_FAILED));
    if (button == IDOK) return DavPageEnd::Saved;
    return button == OB_DAV_PAGE_LOG_OUT ? DavPageEnd::LogOut : DavPageEnd::Cancelled;
}

} // namespace providers
