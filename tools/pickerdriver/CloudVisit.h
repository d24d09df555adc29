// What a user without an account does on the way to a link, and the pick of a stored file.
#pragma once

#include <windows.h>

#include "tools/pickerdriver/CommandLine.h"

namespace pickerdriver {

// Chooses WebDAV servers in the chooser of a cloud account, and logs in to the task's server. Does
// nothing for a task without one.
void LogIn(const Task& task, HANDLE program);

// The same mail page asks once more: the cloud button of its picker, and the last file that the
// server's own folder shows. Returns when the picker has closed. Pictures have -cloud in their
// names.
void PickFromCloud(const Task& task, HWND page, HANDLE program);

} // namespace pickerdriver
