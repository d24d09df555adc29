// The choice of one of two encryption methods for zips, within what policy allows.
#pragma once

#include "OBCore/options/OBOptions.h"
#include "OBCore/settings/BoldFonts.h"
#include "OBCore/settings/PolicyHints.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace obcore {

// Template 105. On the caller's stack for one DoModal, which returns 1 after a save and 2 after a
// cancel. OK writes the method into `options`, which outlive the dialog, and saves it at once,
// whatever the user does in the dialogs around this one. The archive service and the texts are
// bound.
class OBEncryptionDialogImp : public ObLibX::ObXFlatDlg {
public:
    OBEncryptionDialogImp(HWND parent, OBOptions& options);

    bool OnInitDialog() override;
    bool OnOK() override;
    // False where a method's radio is allowed or unchecked; true for every other control.
    bool OnCommand(WPARAM wParam, LPARAM lParam) override;

private:
    OBOptions* options_;
    BoldFonts headline_;
    PolicyHints hints_;
};

} // namespace obcore
