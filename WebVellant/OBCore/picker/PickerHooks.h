// What the dialog's customisation interface can't add: the button beside the file types that picks
// from the cloud, and the picture in the bottom strip. Two window hooks of the thread add them
// while the shell creates its dialog.
#pragma once

#include <string>

#include "OBCore/cloud/CloudButtonHook.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Both hooks of one dialog. Installed just before Show and removed right after it, on the same
// thread, also when an exception passes. The object is what the button's record lives in, so it
// must outlive the dialog's window.
class PickerHooks {
public:
    // A hook that can't be installed is only traced.
    explicit PickerHooks(obcontract::ProviderManagerHandle manager);
    PickerHooks(const PickerHooks&) = delete;
    PickerHooks& operator=(const PickerHooks&) = delete;
    ~PickerHooks();

    // Moves the link text of the cloud button, if it has any, to `text`.
    void MoveLinkText(std::wstring& text);

private:
    ObLib::UniqueWindowHook logo_;
    CloudButtonHook cloud_;
};

} // namespace obcore
