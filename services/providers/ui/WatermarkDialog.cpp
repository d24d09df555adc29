#include "services/providers/ui/WatermarkDialog.h"

#include <cstddef>
#include <optional>
#include <string>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/ui/FileQuestion.h"
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

bool IsPicture(HWND dialog) {
    return IsDlgButtonChecked(dialog, OB_WATERMARK_USE_PICTURE) == BST_CHECKED;
}

// What belongs to the other choice can't be used.
void EnableChosen(HWND dialog) {
    const bool isPicture = IsPicture(dialog);
    EnableWindow(GetDlgItem(dialog, OB_WATERMARK_TEXT), !isPicture);
    EnableWindow(GetDlgItem(dialog, OB_WATERMARK_PICTURE), isPicture);
    EnableWindow(GetDlgItem(dialog, OB_WATERMARK_BROWSE), isPicture);
}

void ShowChoice(HWND dialog, const WatermarkSettings& settings) {
    SendDlgItemMessageW(dialog, OB_WATERMARK_PICTURE, EM_SETLIMITTEXT, kLongestPicturePath, 0);
    SetDlgItemTextW(dialog, OB_WATERMARK_PICTURE, settings.picture.c_str());
    const int chosen = settings.usesPicture ? OB_WATERMARK_USE_PICTURE : OB_WATERMARK_TEXT_LABEL;
    for (const int button : {OB_WATERMARK_TEXT_LABEL, OB_WATERMARK_USE_PICTURE}) {
        CheckDlgButton(dialog, button, button == chosen ? BST_CHECKED : BST_UNCHECKED);
    }
    EnableChosen(dialog);
}

void Show(HWND dialog, const WatermarkSettings& settings) {
    ShowChoice(dialog, settings);
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

// What the field has, without blanks around it.
std::wstring Entered(HWND dialog, int field) {
    wchar_t text[kLongestPicturePath + 1] = L"";
    GetDlgItemTextW(dialog, field, text, static_cast<int>(std::size(text)));
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

// A relative path would mean another file at each run.
bool IsWholePath(const std::wstring& path) {
    return path.starts_with(L"\\\\") || (path.size() > 2 && path[1] == L':' && path[2] == L'\\');
}

// The choice between text and picture; the one that wasn't chosen stays as it was stored.
bool ReadChoice(HWND dialog, WatermarkSettings& settings) {
    const bool isPicture = IsPicture(dialog);
    const int field = isPicture ? OB_WATERMARK_PICTURE : OB_WATERMARK_TEXT;
    const std::wstring entered = Entered(dialog, field);
    if (isPicture && !IsWholePath(entered))
        return Refused(dialog, OwnText(OB_TEXT_WATERMARK_CHOOSE), field);
    if (entered.empty()) return Refused(dialog, OwnText(OB_TEXT_WATERMARK_EMPTY), field);
    settings.usesPicture = isPicture;
    (isPicture ? settings.picture : settings.text) = entered;
    return true;
}

bool Read(HWND dialog, WatermarkSettings& settings) {
    if (!ReadChoice(dialog, settings)) return false;
    const auto opacity = EnteredOpacity(dialog);
    if (!opacity) {
        return Refused(dialog,
                       FormatOwnText(OB_TEXT_RESIZE_NUMBER, {std::to_wstring(kLeastOpacity),
                                                             std::to_wstring(kMostOpacity)}),
                       OB_WATERMARK_OPACITY);
    }
    const LRESULT place = SendDlgItemMessageW(dialog, OB_WATERMARK_PLACE, CB_GETCURSEL, 0, 0);
    if (place >= 0) settings.place = static_cast<WatermarkPlace>(place);
    settings.opacity = *opacity;
    return true;
}

void Browse(HWND dialog) {
    const std::wstring path =
        AskForFileToOpen({dialog, OB_TEXT_WATERMARK_FILTER, kLongestPicturePath});
    if (!path.empty()) SetDlgItemTextW(dialog, OB_WATERMARK_PICTURE, path.c_str());
}

bool OnCommand(HWND dialog, WORD command) {
    if (command == OB_WATERMARK_TEXT_LABEL || command == OB_WATERMARK_USE_PICTURE) {
        EnableChosen(dialog);
        return true;
    }
    if (command == OB_WATERMARK_BROWSE) {
        Browse(dialog);
        return true;
    }
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
        SetFocus(GetDlgItem(dialog, IsPicture(dialog) ? OB_WATERMARK_PICTURE : OB_WATERMARK_TEXT));
        return FALSE; // the chosen field has the focus
    });
}

} // namespace

bool AskForSettings(HWND owner, WatermarkSettings& settings) {
    return ShowSettingsBox(owner, OB_WATERMARK_DIALOG, &Proc, settings);
}

} // namespace providers
