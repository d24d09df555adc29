// The settings dialog of pictures that are made smaller.
#pragma once

#include <windows.h>

#include "services/providers/settings/ResizeSettings.h"

namespace providers {

// Shows the settings in front of the owner, which may be null or no longer exist, and waits. A
// number that isn't within its aim's limits is refused with a sentence, and the dialog stays. True,
// with the user's choice, after OK; false, with the settings unchanged, after anything else. On the
// thread of the owner.
bool AskForSettings(HWND owner, ResizeSettings& settings);

} // namespace providers
