// Image lists, as the owners of handles name them; see windows.h.
#pragma once

#include <windows.h>

using HIMAGELIST = struct HIMAGELIST__*;

extern "C" BOOL ImageList_Destroy(HIMAGELIST list);
