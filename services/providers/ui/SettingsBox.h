// What the settings dialogs share: shown, waited for, and taken over only after OK.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/ModulePath.h"

namespace providers {

// Shows a dialog of this module in front of the owner, which may be null or no longer exist, and
// waits. `proc` gets a pointer to settings that it may change; they become the caller's after OK
// alone, for which the result is true. On the thread of the owner.
template <class Settings>
bool ShowSettingsBox(HWND owner, int dialog, DLGPROC proc, Settings& settings) {
    Settings chosen = settings;
    const HWND living = IsWindow(owner) ? owner : nullptr;
    if (DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(dialog), living, proc,
                        reinterpret_cast<LPARAM>(&chosen)) != IDOK) {
        return false;
    }
    settings = chosen;
    return true;
}

} // namespace providers
