#include "services/providers/ui/Texts.h"

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/providers/ui/TextIds.h"

namespace providers {
namespace {

int ShowBox(HWND owner, const std::wstring& text, UINT kind) {
    return MessageBoxW(IsWindow(owner) ? owner : nullptr, text.c_str(),
                       OwnText(OB_TEXT_CAPTION).c_str(), kind);
}

} // namespace

// The system makes no copy: the texts are counted, and not ended by a NUL.
std::wstring OwnText(UINT id) {
    const wchar_t* text = nullptr;
    const int length = LoadStringW(ObLib::ThisModule(), id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

std::wstring FormatOwnText(UINT id, std::initializer_list<std::wstring> inserts) {
    const std::wstring pattern = OwnText(id);
    std::wstring text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const wchar_t next = at + 1 < pattern.size() ? pattern[at + 1] : L'\0';
        const auto place = static_cast<std::size_t>(next - L'1');
        if (pattern[at] == L'%' && next >= L'1' && next <= L'9' && place < inserts.size()) {
            text += inserts.begin()[place];
            ++at;
        } else {
            text += pattern[at];
        }
    }
    return text;
}

std::wstring FileNameOf(const std::wstring& path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

void ShowSentence(HWND owner, const std::wstring& sentence) {
    ShowBox(owner, sentence, MB_OK | MB_ICONEXCLAMATION);
}

bool AskQuestion(HWND owner, const std::wstring& question) {
    return ShowBox(owner, question, MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION) == IDYES;
}

bool AskToTryAgain(HWND owner, const std::wstring& sentence) {
    return ShowBox(owner, sentence, MB_RETRYCANCEL | MB_ICONEXCLAMATION) == IDRETRY;
}

} // namespace providers
