#include "OBCore/settings/OptionsDialog.h"

#include <algorithm>
#include <iterator>

#include "OBCore/settings/AboutDialog.h"
#include "OBCore/settings/AttachmentDialog.h"
#include "OBCore/settings/BrowserExtension.h"
#include "OBCore/settings/Browsers.h"
#include "OBCore/settings/CollapseRows.h"
#include "OBCore/settings/ObConfigureCloudServiceDialog.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "OBCore/settings/TransformRows.h"
#include "OBCore/settings/UpdateCheckDialog.h"
#include "ObLibX/src/dialog/WindowCentring.h"

namespace obcore {
namespace {

constexpr INT_PTR kAccepted = 1;
constexpr int kBrowserGroup[] = {OB_OPTIONS_BROWSERS, OB_OPTIONS_CHROME, OB_OPTIONS_EDGE,
                                 OB_OPTIONS_FIREFOX};
constexpr int kFirefoxRow[] = {OB_OPTIONS_FIREFOX, 0};

void EnableIf(HWND window, int id, bool isEnabled) {
    if (!isEnabled) EnableWindow(GetDlgItem(window, id), FALSE);
}

void ApplyBrowsers(HWND window, const InstalledBrowsers& browsers) {
    EnableIf(window, OB_OPTIONS_BROWSERS, browsers.edge || browsers.firefox);
    EnableIf(window, OB_OPTIONS_CHROME, browsers.chrome);
    EnableIf(window, OB_OPTIONS_EDGE, browsers.edge);
    EnableIf(window, OB_OPTIONS_FIREFOX, browsers.firefox);
    if (browsers.firefox && !browsers.firefoxTakesExtension) {
        CollapseRows(window, kFirefoxRow);
        ObLibX::CenterWindow(window, nullptr, nullptr, true); // it was centred with the row
    }
}

struct CommandRow {
    int id;
    void (*act)(HWND window, OBOptions& options);
};

void ConfigureCloud(HWND window, OBOptions& options) {
    ConfigureCloudContext context{.options = &options};
    OBConfigureCloudDialogImp(window, context).DoModal();
}

constexpr CommandRow kCommands[] = {
    {OB_OPTIONS_CLOUD, &ConfigureCloud},
    {OB_OPTIONS_ATTACHMENT,
     [](HWND window, OBOptions& options) { OBAttachmentDialogImp(window, options).DoModal(); }},
    {OB_OPTIONS_UPDATE,
     [](HWND window, OBOptions& options) { ShowUpdateCheckDialog(window, options); }},
    {OB_OPTIONS_ABOUT, [](HWND window, OBOptions& options) { ShowAboutDialog(window, options); }},
    {OB_OPTIONS_OK, [](HWND window, OBOptions&) { EndDialog(window, kAccepted); }},
    {IDCANCEL, [](HWND window, OBOptions&) { EndDialog(window, IDCANCEL); }},
};

} // namespace

OBOptionsDialogImp::OBOptionsDialogImp(std::int32_t dialogTemplate, HWND parent, OBOptions& edited)
    : ObXFlatDlg(dialogTemplate, parent, 0, true), options_(&edited),
      about_(OB_OPTIONS_ABOUT, this) {
    backgroundColor = GroundColor(); // blue buttons take their rings off with it
}

OBOptionsDialogImp::~OBOptionsDialogImp() = default;

bool OBOptionsDialogImp::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    ApplyOptionsStates();
    StyleOptions(*this);
    pictures_.Show(window);
    const HWND link = GetItem(OB_OPTIONS_ABOUT, true);
    if (IsOnGround(window, link)) about_.SetBackgroundColor(GroundColor());
    if (options_->DisableWebVellant) hints_.Show(window, kBrowserGroup);
    about_.Attach(window); // the last one, so that its procedures are the outermost ones
    return true;
}

void OBOptionsDialogImp::ApplyOptionsStates() {
    icon_.Set(window);
    TickTransformBoxes(window, *options_);
    DisableMissingTransforms(window, *options_);
    if (!options_->DisableWebVellant) {
        ApplyBrowsers(window, FindBrowsers());
        return;
    }
    for (const int id : kBrowserGroup) EnableIf(window, id, false);
}

bool OBOptionsDialogImp::OnPaint() {
    PaintOptions(window);
    return true;
}

bool OBOptionsDialogImp::OnCommandId(int id, int, HWND) {
    const auto* const row = std::ranges::find(kCommands, id, &CommandRow::id);
    if (row != std::end(kCommands)) {
        row->act(window, *options_);
        return true;
    }
    return OnTransformCommand(window, id, *options_) || OnBrowserCommand(window, id);
}

} // namespace obcore
