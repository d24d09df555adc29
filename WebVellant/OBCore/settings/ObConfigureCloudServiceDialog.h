// The settings of links: when a file goes to the cloud, how long it stays, which accounts there
// are.
#pragma once

#include <windows.h>

#include "OBCore/modules/ProductIcon.h"
#include "OBCore/settings/BoldFonts.h"
#include "OBCore/settings/CloudCommands.h"
#include "OBCore/settings/PolicyHints.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace obcore {

// Its options are loaded, with an initialised provider manager. The account buttons act at once;
// the other settings change with OK: DoModal returns 1 then, and they are saved. A refused number
// of days leaves the dialog open with the rest already in the record. On the thread of the dialogs;
// ResourceModule() must be bound.
class OBConfigureCloudDialogImp : public ObLibX::ObXFlatDlg {
public:
    // `context` outlives the object.
    OBConfigureCloudDialogImp(HWND parent, ConfigureCloudContext& context);

    ~OBConfigureCloudDialogImp() override;
    bool OnInitDialog() override;
    bool OnOK() override;
    bool OnNotify(int id, NMHDR* header, LRESULT& result) override;
    bool OnCommand(WPARAM wParam, LPARAM lParam) override;
    bool OnDestroy() override;

private:
    void ShowSendSetting();
    void ShowExpiry();
    void CutSize();
    void RefuseDays();
    LRESULT OnDrawStage(const NMLVCUSTOMDRAW& draw);
    bool Press(int id);

    ConfigureCloudContext& context_;
    HWND list_ = nullptr; // of accounts; also when `window` is null already
    BoldFonts fonts_;
    ProductIcon icon_;
    PolicyHints hints_;
    bool isBusy_ = false; // an account button is at work
};

} // namespace obcore
