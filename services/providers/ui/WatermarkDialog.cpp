#include "services/providers/ui/WatermarkDialog.h"

#include <cstddef>
#include <optional>
#include <string>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/ui/SettingsBox.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/ui/WatermarkDialogIds.h"

namespace providers {
namespace {

constexpr int kMostDigits = 3;

constexpr UINT kPlaceTexts[] = {OB_TEXT_PLACE_TOP_LEFT, OB_TEXT_PLACE_TOP_RIGHT,
                                OB_TEXT_PLACE_BOTTOM_LEFT, OB_TEXT_PLACE_BOTTOM_RIGHT,
                                OB_TEXT_PLACE_CENTRE};
static_assert(std::size(kPlaceTexts) == kWatermarkPlaceCount);

void Show(HWND dialog, const WatermarkSettings& settings) {
    SendDlgItemMessageW(dialog, OB_WATERMARK_TEXT, EM_SETLIMITTEXT, kLongestWatermark, 0);
    SendDlgItemMessageW(dialog, OB_WATERMARK_OPACITY, EM_SETLIMITTEXT, kMostDigits, 0);
    SetDlgItemTextW(dialog, OB_WATERMARK_TEXT, settings.text.c_str());
    for (const UINT text : kPlaceTexts) {
        SendDlgItemMessageW(dialog, OB_WATERMARK_PLACE, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(OwnText(text).c_str()));
    }
    SendDlgItemMessageW(dialog, OB_WATERMARK_PLACE, CB_SETCURSEL,
                        static_cast<WPARAM>(settings.place), 0);
    SetDlgItemInt(dialog, OB_WATERMARK_OPACITY, settings.opacity, FALSE);
}

// The text without blanks around it.
std::wstring EnteredText(HWND dialog) {
    wchar_t text[kLongestWatermark + 1] = L"";
    GetDlgItemTextW(dialog, OB_WATERMARK_TEXT, text, static_cast<int>(std::size(text)));
    const std::wstring entered = text;
    const std::size_t first = entered.find_first_not_of(L" \t");
    if (first == std::wstring::npos) return {};
    return entered.substr(first, entered.find_last_not_of(L" \t") + 1 - first);
}

std::optional<std::uint32_t> EnteredOpacity(HWND dialog) {
    BOOL isNumber = FALSE;
    const UINT number = GetDlgItemInt(dialog, OB_WATERMARK_OPACITY, &isNumber, FALSE);
    if (!isNumber || number < kLeastOpacity || number > kMostOpacity) return {};
    return number;
}

// Shows the sentence, and leaves the field ready to be corrected.
bool Refused(HWND dialog, const std::wstring& sentence, int field) {
    ShowSentence(dialog, sentence);
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, field)), TRUE);
    return false;
}

bool Read(HWND dialog, WatermarkSettings& settings) {
    const std::wstring text = EnteredText(dialog);
    if (text.empty()) return Refused(dialog, OwnText(OB_TEXT_WATERMARK_EMPTY), OB_WATERMARK_TEXT);
    const auto opacity = EnteredOpacity(dialog);
    if (!opacity) {
        return Refused(dialog,
                       FormatOwnText(OB_TEXT_RESIZE_NUMBER, {std::to_wstring(kLeastOpacity),
                                                             std::to_wstring(kMostOpacity)}),
                       OB_WATERMARK_OPACITY);
    }
    const LRESULT place = SendDlgItemMessageW(dialog, OB_WATERMARK_PLACE, CB_GETCURSEL, 0, 0);
    settings.text = text;
    if (place >= 0) settings.place = static_cast<WatermarkPlace>(place);
    settings.opacity = *opacity;
    return true;
}

bool OnCommand(HWND dialog, WORD command) {
    if (command != IDOK && command != IDCANCEL) return false;
    auto* const settings =
        reinterpret_cast<WatermarkSettings*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (command == IDOK && settings && !Read(dialog, *settings)) return true;
    EndDialog(dialog, command);
    return true;
}

// The settings are the caller's, who waits in AskForSettings while the dialog lives.
INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message != WM_INITDIALOG && message != WM_COMMAND) return FALSE;
    return ObLib::Guarded(TRUE, [&] {
        if (message == WM_COMMAND) return OnCommand(dialog, LOWORD(wParam)) ? TRUE : FALSE;
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Show(dialog, *reinterpret_cast<const WatermarkSettings*>(lParam));
        return TRUE; // the system sets the focus to the text
    });
}

} // namespace

bool AskForSettings(HWND owner, WatermarkSettings& settings) {
    return ShowSettingsBox(owner, OB_WATERMARK_DIALOG, &Proc, settings);
}

} // namespace providers
