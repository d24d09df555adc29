// Makes the flat controls of a dialog: the dialogs get them from here by one call.
#pragma once

namespace ObLibX {

// Gives the dialogs the flat controls. Before the first dialog opens, on the thread of the dialogs.
void UseFlatControls();

} // namespace ObLibX
