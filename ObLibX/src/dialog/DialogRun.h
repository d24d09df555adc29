// Opens a dialog of the system from a template, in the font of all dialogs. Its window has the
// scale of the first monitor on every monitor.
#pragma once

#include <windows.h>

#include <cstdint>

namespace ObLibX {

// As DialogBoxParam; with `extraStyle` or a base font the template is rewritten first (a copy of
// it). -1 when the dialog can't be made. Throws std::bad_alloc.
INT_PTR RunDialog(HMODULE module, std::int32_t templateId, HWND parent, DLGPROC procedure,
                  LPARAM param, DWORD extraStyle);

// As CreateDialogParam, in the same way. Null when the dialog can't be made.
HWND CreateModelessDialog(HMODULE module, std::int32_t templateId, HWND parent, DLGPROC procedure,
                          LPARAM param, DWORD extraStyle);

} // namespace ObLibX
