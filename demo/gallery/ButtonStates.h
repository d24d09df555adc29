// Shows a button in a state that it has only while the mouse is on it.
#pragma once

#include "ObLibX/src/dialog/ObXDlg.h"

namespace gallery {

// The object of this id is a flat button. Until the real mouse comes to it.
void ShowHot(const ObLibX::ObXDlg& page, int id);
void ShowPressed(const ObLibX::ObXDlg& page, int id);

} // namespace gallery
