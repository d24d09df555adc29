#include "OBCore/picker/PickerHooks.h"

#include <utility>

#include "OBCore/modules/ObTrace.h"
#include "OBCore/picker/CloudButton.h"
#include "OBCore/picker/Logo.h"

using obcontract::ProviderManagerHandle;

namespace obcore {
namespace {

// Empty on failure; the error is then the thread's last one.
ObLib::UniqueWindowHook InstallHook(HOOKPROC procedure) {
    return ObLib::UniqueWindowHook(
        SetWindowsHookExW(WH_CBT, procedure, nullptr, GetCurrentThreadId()));
}

} // namespace

PickerHooks::PickerHooks(ProviderManagerHandle manager) : logo_(InstallHook(&LogoHookProcedure)) {
    if (!logo_) ObTrace("SetWindowsHookEx for Logo failed %x", GetLastError());
    cloud_.providerManager = manager;
    SetCloudButtonRecord(&cloud_);
    cloud_.hook = InstallHook(&CloudButtonHookProcedure);
    if (!cloud_.hook) ObTrace("SetWindowsHookEx failed %x", GetLastError());
}

PickerHooks::~PickerHooks() {
    SetCloudButtonRecord(nullptr);
    cloud_.hook.Reset();
}

void PickerHooks::MoveLinkText(std::wstring& text) {
    if (!cloud_.linkText.empty()) text = std::exchange(cloud_.linkText, {});
}

} // namespace obcore
