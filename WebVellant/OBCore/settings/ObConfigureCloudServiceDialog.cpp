#include "OBCore/settings/ObConfigureCloudServiceDialog.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/CloudList.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/DialogItems.h"
#include "ObLib/Src/Win32/ScopeExit.h"

namespace obcore {
namespace {

constexpr std::uint32_t kLargestSize = 2048; // megabytes
constexpr std::uint32_t kMostDays = 1825;
constexpr int kMegabyteShift = 20;

constexpr int kHeadlines[] = {OB_CLOUD_SEND_HEADLINE, OB_CLOUD_ACCOUNTS_HEADLINE,
                              OB_CLOUD_EXPIRY_HEADLINE};

// What is taken away together: a field with its label and its arrows too.
constexpr int kSendGroup[] = {OB_CLOUD_SEND_NEVER,   OB_CLOUD_SEND_ALWAYS,
                              OB_CLOUD_SEND_LARGE,   OB_CLOUD_SIZE_LABEL,
                              OB_CLOUD_MINIMUM_SIZE, OB_CLOUD_MINIMUM_SIZE_SPIN};
constexpr int kExpiryGroup[] = {OB_CLOUD_EXPIRE, OB_CLOUD_DAYS_LABEL, OB_CLOUD_DAYS,
                                OB_CLOUD_DAYS_SPIN};

constexpr int kSendRadios[] = {OB_CLOUD_SEND_NEVER, OB_CLOUD_SEND_ALWAYS, OB_CLOUD_SEND_LARGE};

struct SendChoice {
    int id;
    SendSettingKind setting;
};

// The last row is what any other value shows.
constexpr SendChoice kSendChoices[] = {
    {OB_CLOUD_SEND_NEVER, SendSettingKind::Never},
    {OB_CLOUD_SEND_ALWAYS, SendSettingKind::Always},
    {OB_CLOUD_SEND_LARGE, SendSettingKind::WhenLarger},
};

int ChoiceOf(SendSettingKind setting) {
    for (const SendChoice& choice : kSendChoices) {
        if (choice.setting == setting) return choice.id;
    }
    return OB_CLOUD_SEND_LARGE;
}

SendSettingKind CheckedSetting(HWND window, SendSettingKind otherwise) {
    for (const SendChoice& choice : kSendChoices) {
        if (IsChecked(window, choice.id)) return choice.setting;
    }
    return otherwise;
}

void SetNumber(HWND window, int id, std::uint32_t number) {
    SetDlgItemInt(window, id, number, FALSE);
}

void SetRange(HWND window, int id, std::uint32_t most) {
    SendDlgItemMessageW(window, id, UDM_SETRANGE32, 0, static_cast<LPARAM>(most));
}

bool IsDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

// The number in a field; the largest there is for one that is larger. Nothing when the field has
// none: it is empty, or has a sign or a letter.
std::optional<std::uint32_t> NumberIn(HWND window, int id) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    const std::wstring text = ItemText(window, id);
    if (text.empty() || !std::ranges::all_of(text, &IsDigit)) return std::nullopt;
    std::uint64_t number = 0;
    for (const wchar_t digit : text) {
        number = std::min(number * 10 + static_cast<std::uint64_t>(digit - L'0'), most);
    }
    return static_cast<std::uint32_t>(number);
}

// What the field has, at most the largest size; the record's own size when it has no number.
std::uint32_t SizeIn(HWND window, const OBOptions& options) {
    const auto typed = NumberIn(window, OB_CLOUD_MINIMUM_SIZE);
    return std::min(typed.value_or(options.MinimumSize), kLargestSize);
}

} // namespace

OBConfigureCloudDialogImp::OBConfigureCloudDialogImp(HWND parent, ConfigureCloudContext& context)
    : ObXFlatDlg(OB_CONFIGURE_CLOUD, parent, 0, true), context_(context) {}

OBConfigureCloudDialogImp::~OBConfigureCloudDialogImp() = default;

bool OBConfigureCloudDialogImp::OnInitDialog() {
    const bool result = ObXFlatDlg::OnInitDialog();
    list_ = GetItem(OB_CLOUD_ACCOUNTS, true);
    context_.boldFont = fonts_.MakeBold(list_);
    PrepareCloudList(list_);
    FillCloudList(list_, *context_.options);
    for (const int id : kHeadlines) fonts_.SetBoldFont(window, id);
    icon_.Set(window);
    ShowSendSetting();
    SetNumber(window, OB_CLOUD_MINIMUM_SIZE, context_.options->MinimumSize);
    ShowExpiry();
    DisableAccountButtons(window);
    return result;
}

// Without a storage provider nobody has decided anything.
void OBConfigureCloudDialogImp::ShowSendSetting() {
    const bool isDecided = context_.options->DisableCloudServices;
    if (context_.options->CloudServicesUnavailable()) {
        CheckOneOf(window, kSendRadios, OB_CLOUD_SEND_NEVER);
        for (const int id : kSendGroup) SetEnabled(window, id, false);
        if (isDecided) hints_.Show(window, kSendGroup);
        return;
    }
    CheckOneOf(window, kSendRadios, ChoiceOf(context_.options->SendSetting));
    SetRange(window, OB_CLOUD_MINIMUM_SIZE_SPIN, kLargestSize);
}

void OBConfigureCloudDialogImp::ShowExpiry() {
    const OBOptions& options = *context_.options;
    if (!options.ExpireFilesAvailable) {
        for (const int id : kExpiryGroup) SetEnabled(window, id, false);
        hints_.Show(window, kExpiryGroup);
        return;
    }
    SetChecked(window, OB_CLOUD_EXPIRE, options.ExpireFiles);
    SetRange(window, OB_CLOUD_DAYS_SPIN, kMostDays);
    SetNumber(window, OB_CLOUD_DAYS, options.S4DelExpireDays);
}

bool OBConfigureCloudDialogImp::OnOK() {
    OBOptions& options = *context_.options;
    options.SendSetting = CheckedSetting(window, options.SendSetting);
    options.MinimumSize = SizeIn(window, options);
    options.MinimumSizeBytes = options.MinimumSize << kMegabyteShift;
    const std::uint32_t days = NumberIn(window, OB_CLOUD_DAYS).value_or(options.S4DelExpireDays);
    if (days > kMostDays) {
        RefuseDays();
        return true;
    }
    options.ExpireFiles = IsChecked(window, OB_CLOUD_EXPIRE);
    options.S4DelExpireDays = days;
    options.SaveCloudSettings();
    return ObXFlatDlg::OnOK();
}

void OBConfigureCloudDialogImp::RefuseDays() {
    const HWND own = window;
    ShowMessage(own, LoadText(TextId::DaysOutOfRange).c_str(), MB_ICONERROR);
    if (!IsWindow(own)) return;
    SetNumber(own, OB_CLOUD_DAYS, kMostDays);
    const HWND field = GetDlgItem(own, OB_CLOUD_DAYS);
    SendMessageW(own, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
}

bool OBConfigureCloudDialogImp::OnNotify(int id, NMHDR* header, LRESULT& result) {
    if (id != OB_CLOUD_ACCOUNTS) return ObXFlatDlg::OnNotify(id, header, result);
    result = 0;
    switch (header->code) {
    case NM_CUSTOMDRAW:
        result = OnDrawStage(*reinterpret_cast<const NMLVCUSTOMDRAW*>(header));
        return true;
    case NM_DBLCLK:
        Press(OB_CLOUD_LOGIN);
        return true;
    case LVN_ITEMCHANGED:
        OnCloudSelectionChanged(window, context_, *reinterpret_cast<const NMLISTVIEW*>(header));
        return true;
    default:
        return ObXFlatDlg::OnNotify(id, header, result);
    }
}

LRESULT OBConfigureCloudDialogImp::OnDrawStage(const NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || !context_.boldFont) return CDRF_DODEFAULT;
    const auto* const profile =
        reinterpret_cast<const obcontract::ProviderProfile*>(draw.nmcd.lItemlParam);
    if (!IsDefaultRow(*context_.options, profile)) return CDRF_DODEFAULT;
    SelectObject(draw.nmcd.hdc, context_.boldFont);
    return CDRF_NEWFONT;
}

// One at a time: a second one would take away the rows that the first works on.
bool OBConfigureCloudDialogImp::Press(int id) {
    if (isBusy_) return true;
    isBusy_ = true;
    const ObLib::ScopeExit done([this] { isBusy_ = false; });
    return OnCloudButton(window, context_, id);
}

bool OBConfigureCloudDialogImp::OnCommand(WPARAM wParam, LPARAM lParam) {
    const int id = LOWORD(wParam);
    const int code = HIWORD(wParam);
    if (id == OB_CLOUD_MINIMUM_SIZE && code == EN_KILLFOCUS) {
        CutSize();
        return true;
    }
    const bool isPress = id >= OB_CLOUD_LOGIN && id <= OB_CLOUD_MANAGE && code == BN_CLICKED;
    return (isPress && Press(id)) || ObXFlatDlg::OnCommand(wParam, lParam);
}

void OBConfigureCloudDialogImp::CutSize() {
    SetNumber(window, OB_CLOUD_MINIMUM_SIZE, SizeIn(window, *context_.options));
}

// The fonts go with this object, when no control can paint with them any more.
bool OBConfigureCloudDialogImp::OnDestroy() {
    context_.boldFont = nullptr;
    if (list_) EndCloudList(list_);
    ObXFlatDlg::OnDestroy();
    return false;
}

} // namespace obcore
