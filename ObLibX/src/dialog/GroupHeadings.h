// Group boxes don't exist in the look of the product: each becomes a heading.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// Replaces each group box of a dialog by a static text at its top, with its text, id and place in
// the Z-order. In a flat dialog the texts are bare windows, and an object for each is returned,
// with an id of its own; in another one they have the bold font of all dialogs, and nothing is
// returned.
std::vector<std::unique_ptr<ObCustomControl>> ReplaceGroupBoxes(HWND dialog, bool isFlat);

} // namespace ObLibX
