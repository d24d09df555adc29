// What follows from a tick in the chooser, and from its main button.
#pragma once

#include <windows.h>

#include <commctrl.h>

namespace obcore {

// The dialog's results.
inline constexpr INT_PTR kProviderChosen = 1; // the job's SelectedStorageProvider is filled
inline constexpr INT_PTR kNothingChosen = 2;

// A change of a row of the list view, in the dialog `window`. At most one row stays ticked: one
// that becomes ticked unticks the others.
void OnListRowChanged(HWND window, const NMLISTVIEW& change);

// Sets the main button by the first row that isn't unticked: disabled without one, and its text by
// whether the account has to be logged in.
void OnSelectRowChanged(HWND window);

// The main button: logs the ticked account in where the button's text asks for it, makes it the
// default where the user wants that, copies it into the job and ends the dialog. The dialog stays
// open when no row is ticked or when the manager refuses.
void OnSelectOk(HWND window);

} // namespace obcore
