// The settings dialog of photos that are converted.
#pragma once

#include <windows.h>

#include "services/providers/settings/PhotoSettings.h"

namespace providers {

// Shows the settings in front of the owner, which may be null or no longer exist, and waits. True,
// with the user's choice, after OK; false, with the settings unchanged, after anything else. On the
// thread of the owner.
bool AskForSettings(HWND owner, PhotoSettings& settings);

} // namespace providers
