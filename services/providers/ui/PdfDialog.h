// The settings dialog of files that become PDFs.
#pragma once

#include <windows.h>

#include "services/providers/settings/PdfSettings.h"

namespace providers {

// Shows the settings in front of the owner, which may be null or no longer exist, and waits. True,
// with the user's choice, after OK; false, with the settings unchanged, after anything else. OK is
// enabled while at least one kind of file is chosen. On the thread of the owner.
bool AskForSettings(HWND owner, PdfSettings& settings);

} // namespace providers
