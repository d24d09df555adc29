// The settings dialog of personal data.
#pragma once

#include <windows.h>

#include "services/providers/settings/PersonalDataSettings.h"

namespace providers {

// Shows the settings in front of the owner, which may be null or no longer exist, and waits. True,
// with the user's choice, after OK; false, with the settings unchanged, after anything else. On the
// thread of the owner.
bool AskForSettings(HWND owner, PersonalDataSettings& settings);

} // namespace providers
