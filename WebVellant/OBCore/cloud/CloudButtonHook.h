// What the cloud button of a file dialog knows, and what a pick from the cloud leaves in it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// The record of the cloud button: an object on the driver's stack, for the one thread that shows
// the dialog. The windows belong to the dialog. The field order is fixed.
struct CloudButtonHook {
    ObLib::UniqueWindowHook hook; // empty once it has fired or been removed
    obcontract::ProviderManagerHandle providerManager = nullptr;
    HWND button = nullptr;
    HWND dialog = nullptr;
    HWND ok_button_ = nullptr; // the dialog's first child of class "Button"
    HWND combobox_ = nullptr;  // the file name box
    std::int32_t minimumWidth = 0;
    std::wstring linkText; // output: what the cloud picker produced
};

} // namespace obcore
