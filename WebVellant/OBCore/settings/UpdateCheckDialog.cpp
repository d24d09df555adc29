#include "OBCore/settings/UpdateCheckDialog.h"

#include "OBCore/modules/ProductIcon.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/settings/BoldFonts.h"
#include "OBCore/settings/DialogItems.h"
#include "OBCore/settings/PlainDialog.h"
#include "OBCore/settings/PolicyHints.h"
#include "OBCore/settings/UpdateCheckDialogIds.h"

namespace obcore {
namespace {

constexpr int kTaken = 1; // result of the dialog
constexpr int kTextCapacity = 64;
constexpr int kDailyRow = 0;
constexpr int kWeeklyRow = 1;
constexpr std::uint32_t kDay = 1;
constexpr std::uint32_t kWeek = 7;

constexpr int kRadios[] = {OB_UPDATE_CHECK_AUTOMATIC, OB_UPDATE_CHECK_NEVER};
constexpr int kOfAutomaticChecks[] = {OB_UPDATE_CHECK_AUTOMATIC, OB_UPDATE_CHECK_INTERVAL,
                                      OB_UPDATE_CHECK_NOW};
constexpr TextId kIntervals[] = {TextId::CheckDaily, TextId::CheckWeekly}; // by row

void ShowIntervals(HWND window, std::uint32_t days) {
    const HWND list = GetDlgItem(window, OB_UPDATE_CHECK_INTERVAL);
    for (const TextId id : kIntervals) {
        const std::wstring text = LoadText(id, kTextCapacity);
        SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    SendMessageW(list, CB_SETCURSEL, days == kDay ? kDailyRow : kWeeklyRow, 0);
}

void ShowOptions(HWND window, const OBOptions& options) {
    if (options.NoUpdateChecking) {
        for (const int id : kOfAutomaticChecks) SetEnabled(window, id, false);
    }
    CheckOneOf(window, kRadios,
               options.UpdateCheckEnabled ? OB_UPDATE_CHECK_AUTOMATIC : OB_UPDATE_CHECK_NEVER);
    if (!options.UpdateCheckEnabled) SetEnabled(window, OB_UPDATE_CHECK_INTERVAL, false);
    ShowIntervals(window, options.UpdateCheckIntervalDays);
}

void TakeControls(HWND window, OBOptions& options) {
    const LRESULT row = SendDlgItemMessageW(window, OB_UPDATE_CHECK_INTERVAL, CB_GETCURSEL, 0, 0);
    options.UpdateCheckEnabled = IsChecked(window, OB_UPDATE_CHECK_AUTOMATIC);
    options.UpdateCheckIntervalDays = row == kDailyRow ? kDay : kWeek;
}

class UpdateCheckDialog : public PlainDialog {
public:
    explicit UpdateCheckDialog(OBOptions& options) : options_(options) {}

private:
    void OnOpen(HWND window) override;
    void OnCommand(HWND window, int id) override;

    OBOptions& options_;
    BoldFonts headline_;
    ProductIcon icon_;
    PolicyHints hints_;
};

void UpdateCheckDialog::OnOpen(HWND window) {
    headline_.SetBoldFont(window, OB_UPDATE_CHECK_HEADLINE);
    icon_.Set(window);
    ShowOptions(window, options_);
    if (options_.NoUpdateChecking) hints_.Show(window, kOfAutomaticChecks);
}

void UpdateCheckDialog::OnCommand(HWND window, int id) {
    switch (id) {
    case OB_UPDATE_CHECK_AUTOMATIC:
    case OB_UPDATE_CHECK_NEVER:
        SetEnabled(window, OB_UPDATE_CHECK_INTERVAL, id == OB_UPDATE_CHECK_AUTOMATIC);
        break;
    case OB_UPDATE_CHECK_NOW:
        ArchiveService().CheckForUpdates_VB(window, 1);
        break;
    case IDOK:
        if (!options_.NoUpdateChecking) TakeControls(window, options_);
        EndDialog(window, kTaken);
        break;
    default:
        break;
    }
}

} // namespace

INT_PTR ShowUpdateCheckDialog(HWND owner, OBOptions& options) {
    return UpdateCheckDialog(options).Show(OB_UPDATE_CHECK, owner);
}

} // namespace obcore
