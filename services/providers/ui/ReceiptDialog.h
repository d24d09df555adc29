// The receipt: what was found and removed, file by file, and which files can't be cleaned.
#pragma once

#include <windows.h>

#include <vector>

#include "services/providers/ui/ReceiptText.h"

namespace providers {

// Shows the receipt in front of the owner, which may be null or no longer exist, and waits. True
// when the user lets the files be attached; false for Stop, which Esc and the close box mean too.
// With `onlyRest` the list has the files alone that can't be cleaned. The list is stored only where
// the user saves it. On the thread of the owner.
bool ShowReceipt(HWND owner, const std::vector<ReceiptFile>& files, bool onlyRest);

} // namespace providers
