#include "OBCore/settings/ConfigurationEntry.h"

#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/modules/ThreadLanguage.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/settings/OptionsDialog.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace obcore {
namespace {

constexpr std::int32_t kAccepted = 1;
constexpr int kLargeScreen = 144; // dots per inch

// A provider manager from before the options are loaded until after they are saved. Null, and used
// by nobody, when it can't be made.
class ManagerSession {
public:
    ManagerSession() : manager_(ProviderManager().CreateObExtensionsManager()) {
        if (!manager_) return;
        // The manager reads and writes below the user's hive, which is passed as a number.
        ProviderManager().Init(manager_, reinterpret_cast<std::int64_t>(HKEY_CURRENT_USER),
                               obcontract::kProviderManagerKey);
    }
    ManagerSession(const ManagerSession&) = delete;
    ManagerSession& operator=(const ManagerSession&) = delete;
    ~ManagerSession() {
        if (!manager_) return;
        ProviderManager().Deinit(manager_);
        ProviderManager().DeleteObExtensionsManager(manager_);
    }

    [[nodiscard]] obcontract::ProviderManagerHandle Get() const noexcept { return manager_; }

private:
    obcontract::ProviderManagerHandle manager_;
};

// The service may show the user in a box why nothing is to be encrypted.
void AskAboutEncryption(HWND parent, OBOptions& options) {
    if (!options.AutoEncrypt || options.NoEncryption || options.AllowedEncryptMethods == 0) return;
    const auto answer = ArchiveService().TryToShowWarningOrErrorMessage(parent, 0, 1);
    if (LOWORD(answer) == obcontract::kSwitchEncryptionOff) options.AutoEncrypt = false;
}

int TemplateForScreen() { return ObLibX::GetDpi() < kLargeScreen ? OB_OPTIONS : OB_OPTIONS_LARGE; }

// What the dialog ended with.
std::int32_t RunDialog(HWND parent, OBOptions& options) {
    const ThreadLanguageScope language(options.UILanguage);
    ObLib::AppGlobals().languageModule = ResourceModule();
    ObLibX::UseFlatControls();
    OBOptionsDialogImp dialog(TemplateForScreen(), parent, options);
    return dialog.DoModal();
}

} // namespace

void ShowConfiguration(HWND parent) {
    const ManagerSession session;
    OBOptions options;
    options.ProviderManager = session.Get();
    options.Load();
    AskAboutEncryption(parent, options);
    if (RunDialog(parent, options) == kAccepted) {
        options.SaveAutoTransforms();
    } else {
        ObTrace("DialogBoxParam return: %d", static_cast<int>(GetLastError()));
    }
}

} // namespace obcore
