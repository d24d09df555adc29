#include "OBCore/settings/AttachmentDialog.h"

#include <array>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/DialogItems.h"
#include "OBCore/settings/EncryptionDialog.h"
#include "OBCore/settings/NamePreview.h"

namespace obcore {
namespace {

using obcontract::kCompressionDeflate;
using obcontract::kCompressionZipx;

constexpr int kSaved = 1; // result of DoModal
constexpr int kNameCapacity = 257;

constexpr int kHeadlines[] = {OB_ATTACHMENT_HEADLINE_5, OB_ATTACHMENT_HEADLINE_1,
                              OB_ATTACHMENT_HEADLINE_2, OB_ATTACHMENT_HEADLINE_3,
                              OB_ATTACHMENT_HEADLINE_6, OB_ATTACHMENT_HEADLINE_4};

constexpr int kSendRadios[] = {OB_ATTACHMENT_SEND_ZIP, OB_ATTACHMENT_SEND_ENCRYPTED,
                               OB_ATTACHMENT_SEND_PLAIN};
// What is disabled as the dialog opens was taken away by policy.
constexpr int kByPolicy[] = {OB_ATTACHMENT_SEND_ZIP, OB_ATTACHMENT_SEND_ENCRYPTED,
                             OB_ATTACHMENT_SEND_PLAIN, OB_ATTACHMENT_ENCRYPTION};
constexpr int kEndingRadios[] = {OB_ATTACHMENT_ZIP, OB_ATTACHMENT_ZIPX};

struct OptionBox {
    int id;
    bool OBOptions::*option;
};

constexpr OptionBox kBoxes[] = {
    {OB_ATTACHMENT_USE_EXTENSION, &OBOptions::UseAltExt},
    {OB_ATTACHMENT_SINGLE_NAME, &OBOptions::SingleAttachFileName},
    {OB_ATTACHMENT_SINGLE_CONVERSION, &OBOptions::SingleAttachConversion},
    {OB_ATTACHMENT_DUPLICATES, &OBOptions::DuplicateReferences},
};

// By NameAppendKind.
constexpr TextId kAppendTexts[] = {TextId::AppendNothing, TextId::AppendShortDate,
                                   TextId::AppendLongDate, TextId::AppendTime,
                                   TextId::AppendDateTime};

// Which of the three radios is checked, and what is disabled; zeros fill the row.
struct SendRow {
    bool (*applies)(const OBOptions& options);
    int checked;
    std::array<int, 3> disabled;
};

// The first row that applies counts.
constexpr SendRow kSendRows[] = {
    {[](const OBOptions& o) { return o.AdminSendItem == AdminSendItemKind::ForcedOn; },
     OB_ATTACHMENT_SEND_ZIP,
     {OB_ATTACHMENT_SEND_PLAIN}},
    {[](const OBOptions& o) {
         return o.AdminSendItem == AdminSendItemKind::ForcedOff ||
                (o.DisableMsgEditZipOption && !o.MakesZip());
     },
     OB_ATTACHMENT_SEND_PLAIN,
     {OB_ATTACHMENT_SEND_ZIP, OB_ATTACHMENT_SEND_ENCRYPTED, OB_ATTACHMENT_ENCRYPTION}},
    {[](const OBOptions& o) { return o.AutoEncrypt; }, OB_ATTACHMENT_SEND_ENCRYPTED, {}},
    {[](const OBOptions& o) { return !o.SendItem; }, OB_ATTACHMENT_SEND_PLAIN, {}},
    {[](const OBOptions& o) { return !o.DisableMsgEditZipOption; }, OB_ATTACHMENT_SEND_ZIP, {}},
    {[](const OBOptions&) { return true; }, OB_ATTACHMENT_SEND_ZIP, {OB_ATTACHMENT_SEND_PLAIN}},
};

bool IsEncryptionForbidden(const OBOptions& options) {
    return options.NoEncryption || options.AllowedEncryptMethods == 0;
}

void Disable(HWND window, int id) { SetEnabled(window, id, false); }

void ShowSendChoice(HWND window, const OBOptions& options) {
    if (options.AlwaysEncrypt) {
        Disable(window, OB_ATTACHMENT_SEND_ZIP);
        Disable(window, OB_ATTACHMENT_SEND_PLAIN);
        CheckOneOf(window, kSendRadios, OB_ATTACHMENT_SEND_ENCRYPTED);
        return;
    }
    if (IsEncryptionForbidden(options)) {
        Disable(window, OB_ATTACHMENT_SEND_ENCRYPTED);
        Disable(window, OB_ATTACHMENT_ENCRYPTION);
    }
    for (const SendRow& row : kSendRows) {
        if (!row.applies(options)) continue;
        CheckOneOf(window, kSendRadios, row.checked);
        for (const int id : row.disabled) {
            if (id != 0) Disable(window, id);
        }
        return;
    }
}

void ShowTexts(HWND window, const OBOptions& options) {
    for (const int id : {OB_ATTACHMENT_ZIP_NAME, OB_ATTACHMENT_EXTENSION}) {
        SendDlgItemMessageW(window, id, EM_SETLIMITTEXT, kNameCapacity, 0);
    }
    SetDlgItemTextW(window, OB_ATTACHMENT_ZIP_NAME, options.DefaultZipName.c_str());
    SetDlgItemTextW(window, OB_ATTACHMENT_EXTENSION, options.AltExt.c_str());
}

void ShowAppend(HWND window, NameAppendKind chosen) {
    const HWND list = GetDlgItem(window, OB_ATTACHMENT_APPEND);
    for (const TextId id : kAppendTexts) {
        const std::wstring text = LoadText(id, kNameCapacity);
        SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
}

void InitAttachmentDialog(HWND window, const OBOptions& options) {
    ShowSendChoice(window, options);
    for (const OptionBox& box : kBoxes) SetChecked(window, box.id, options.*box.option);
    ShowTexts(window, options);
    const bool isZip = options.CompressionMethod < kCompressionZipx;
    CheckOneOf(window, kEndingRadios, isZip ? OB_ATTACHMENT_ZIP : OB_ATTACHMENT_ZIPX);
    ShowAppend(window, options.NameAppend);
    ShowStoredName(window, options);
}

std::wstring TrimmedItem(HWND window, int id) {
    return TrimWhitespaceAndDots(ItemText(window, id), kWhitespaceAndDots);
}

// The record takes everything, also what is refused then.
void TakeControls(HWND window, OBOptions& options) {
    options.SendItem = IsChecked(window, OB_ATTACHMENT_SEND_ZIP);
    options.AutoEncrypt = IsChecked(window, OB_ATTACHMENT_SEND_ENCRYPTED);
    for (const OptionBox& box : kBoxes) options.*box.option = IsChecked(window, box.id);
    if (IsChecked(window, OB_ATTACHMENT_ZIPX)) options.CompressionMethod = kCompressionZipx;
    if (IsChecked(window, OB_ATTACHMENT_ZIP)) options.CompressionMethod = kCompressionDeflate;
    options.DefaultZipName = TrimmedItem(window, OB_ATTACHMENT_ZIP_NAME);
    options.AltExt = TrimmedItem(window, OB_ATTACHMENT_EXTENSION);
    options.NameAppend = ChosenAppend(window);
}

// The user goes on where the refused text is.
void Refuse(HWND window, TextId reason, int field) {
    ShowStringWarning(window, reason);
    const HWND item = GetDlgItem(window, field);
    SendMessageW(window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item), TRUE);
}

// False when a text was refused; nothing is saved then.
bool SaveAttachmentDialog(HWND window, OBOptions& options) {
    TakeControls(window, options);
    const bool isGoodName = IsGoodZipName(options.DefaultZipName);
    const bool isGoodExtension = IsGoodExtension(options.AltExt);
    if (!isGoodName) {
        Refuse(window, TextId::NameNotValid, OB_ATTACHMENT_ZIP_NAME);
        return false;
    }
    if (!isGoodExtension && options.UseAltExt) {
        Refuse(window, TextId::ExtensionNotValid, OB_ATTACHMENT_EXTENSION);
        return false;
    }
    options.SaveAttachmentSettings();
    return true;
}

void TakeEncryptionBack(HWND window, OBOptions& options) {
    SetChecked(window, OB_ATTACHMENT_SEND_ENCRYPTED, false);
    options.AutoEncrypt = false;
}

void OnEncryptedChosen(HWND window, OBOptions& options) {
    options.AutoEncrypt = IsChecked(window, OB_ATTACHMENT_SEND_ENCRYPTED);
    if (!options.AutoEncrypt) return;
    if (IsEncryptionForbidden(options)) {
        TakeEncryptionBack(window, options);
        ShowStringBox(window, TextId::EncryptionNotAllowed);
        return;
    }
    const std::uint32_t answer = ArchiveService().TryToShowWarningOrErrorMessage(window, 0, 1);
    if (LOWORD(answer) == obcontract::kSwitchEncryptionOff) TakeEncryptionBack(window, options);
}

void ShowEncryptionDialog(HWND window, OBOptions& options) {
    OBEncryptionDialogImp dialog(window, options);
    dialog.DoModal();
}

void Preview(HWND window, OBOptions&) { UpdateNamePreview(window); }

constexpr int kAnyCode = -1;

struct Command {
    int id;
    int code; // of the notification
    void (*act)(HWND window, OBOptions& options);
};

constexpr Command kCommands[] = {
    {OB_ATTACHMENT_ZIP_NAME, EN_UPDATE, &Preview},
    {OB_ATTACHMENT_EXTENSION, EN_UPDATE, &Preview},
    {OB_ATTACHMENT_USE_EXTENSION, kAnyCode, &Preview},
    {OB_ATTACHMENT_ZIPX, kAnyCode, &Preview},
    {OB_ATTACHMENT_ZIP, kAnyCode, &Preview},
    {OB_ATTACHMENT_APPEND, CBN_SELCHANGE, &Preview},
    {OB_ATTACHMENT_SEND_ENCRYPTED, kAnyCode, &OnEncryptedChosen},
    {OB_ATTACHMENT_ENCRYPTION, kAnyCode, &ShowEncryptionDialog},
};

bool Fits(const Command& command, int id, int code) {
    return command.id == id && (command.code == kAnyCode || command.code == code);
}

} // namespace

OBAttachmentDialogImp::OBAttachmentDialogImp(HWND parent, OBOptions& options)
    : ObXFlatDlg(OB_ATTACHMENT, parent, 0, true), options_(&options) {}

bool OBAttachmentDialogImp::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    for (const int id : kHeadlines) headlines_.SetBoldFont(window, id);
    icon_.Set(window);
    InitAttachmentDialog(window, *options_);
    hints_.Show(window, kByPolicy);
    return true;
}

bool OBAttachmentDialogImp::OnOK() {
    if (!SaveAttachmentDialog(window, *options_)) return false;
    EndDialog(window, kSaved);
    window = nullptr; // controls still notify while they are destroyed
    return false;
}

// Fields notify while they are filled; the first preview is the stored name.
bool OBAttachmentDialogImp::OnCommand(WPARAM wParam, LPARAM) {
    if (inInitDialog) return true;
    for (const Command& command : kCommands) {
        if (Fits(command, LOWORD(wParam), HIWORD(wParam))) command.act(window, *options_);
    }
    return true;
}

} // namespace obcore
