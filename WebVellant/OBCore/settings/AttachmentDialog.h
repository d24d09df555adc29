// The settings of what happens to picked files: zipped, encrypted or left alone, and the zip's
// name.
#pragma once

#include "OBCore/modules/ProductIcon.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/settings/BoldFonts.h"
#include "OBCore/settings/PolicyHints.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace obcore {

// Template 104. On the caller's stack for one DoModal, which returns 1 after a save and 2 after a
// cancel. Works on `options`, which outlive it and have been loaded: a refused OK and a choice of
// encryption change them at once, also where the user cancels then; the registry is written by an
// OK that isn't refused. The archive service and the texts are bound.
class OBAttachmentDialogImp : public ObLibX::ObXFlatDlg {
public:
    OBAttachmentDialogImp(HWND parent, OBOptions& options);

    bool OnInitDialog() override;
    bool OnOK() override;
    bool OnCommand(WPARAM wParam, LPARAM lParam) override;

private:
    OBOptions* options_;
    BoldFonts headlines_;
    ProductIcon icon_;
    PolicyHints hints_;
};

} // namespace obcore
