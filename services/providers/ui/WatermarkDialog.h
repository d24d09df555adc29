// The settings dialog of watermarks.
#pragma once

#include <windows.h>

#include "services/providers/settings/WatermarkSettings.h"

namespace providers {

// As the dialog of ResizeSettings. An empty text and a number outside the limits are refused with a
// sentence.
bool AskForSettings(HWND owner, WatermarkSettings& settings);

} // namespace providers
