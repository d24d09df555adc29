// What owners of the shell's handles name; see windows.h.
#pragma once

#include <windows.h>

using PIDLIST_ABSOLUTE = struct ITEMIDLIST__*;

extern "C" void ILFree(PIDLIST_ABSOLUTE list);
extern "C" void CoTaskMemFree(void* memory);
