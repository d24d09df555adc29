#include "OBCore/picker/PickerHooks.h"

#include <utility>

#include "OBCore/modules/ObTrace.h"

using obcontract::ProviderManagerHandle;

namespace obcore {
namespace {

// Empty on failure; the error is then the thread's last one.
ObLib::UniqueWindowHook InstallHook() {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return {};
}

} // namespace

PickerHooks::PickerHooks(ProviderManagerHandle manager) : logo_(InstallHook()) {
    if (!logo_) ObTrace("SetWindowsHookEx for Logo failed %x", GetLastError());
    cloud_.providerManager = manager;
    cloud_.hook = InstallHook();
    if (!cloud_.hook) ObTrace("SetWindowsHookEx failed %x", GetLastError());
}

void PickerHooks::MoveLinkText(std::wstring& text) {
    if (!cloud_.linkText.empty()) text = std::exchange(cloud_.linkText, {});
}

} // namespace obcore
