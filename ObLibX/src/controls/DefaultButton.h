// Which button of a flat dialog has the accent colour and is pressed by Enter: one and the same.
#pragma once

#include <windows.h>

#include <vector>

#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// Among the dialog's push buttons that have an object: a default one gets the accent colour if no
// button has it; without a default one the button of the accent colour becomes it. The objects'
// windows are known; they needn't be attached.
void SettleDefaultButton(HWND dialog, const std::vector<ObCustomControl*>& controls);

} // namespace ObLibX
