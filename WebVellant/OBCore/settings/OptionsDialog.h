// The settings window: the automatic transforms, the pages of settings, the browsers.
#pragma once

#include <windows.h>

#include <cstdint>

#include "OBCore/modules/ProductIcon.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/settings/OptionsPainting.h"
#include "OBCore/settings/PolicyHints.h"
#include "ObLibX/src/controls/ObHyperlink.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"

namespace obcore {

// Edits `options`, which outlive it, and saves nothing: what it ends with, 1 for OK and 2 for a
// cancel, is for its caller. On the thread of the dialogs; archive service, resource module and, if
// the options have one, provider manager are bound.
class OBOptionsDialogImp : public ObLibX::ObXFlatDlg {
public:
    // `templateId`: OB_OPTIONS or OB_OPTIONS_LARGE.
    OBOptionsDialogImp(std::int32_t templateId, HWND parent, OBOptions& options);

    ~OBOptionsDialogImp() override;
    bool OnInitDialog() override;
    bool OnPaint() override;
    bool OnCommandId(int id, int notifyCode, HWND control) override;

private:
    void ApplyOptionsStates();

    OBOptions* options_;
    ObLibX::ObCmdLinkCtrl about_;
    ProductIcon icon_;
    OptionsPictures pictures_;
    PolicyHints hints_;
};

} // namespace obcore
