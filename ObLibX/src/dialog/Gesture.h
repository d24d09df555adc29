// The system's calls for touch, which systems before Windows 7 don't have.
#pragma once

#include <windows.h>

namespace ObLibX {

// As the system's calls of these names; FALSE where there is none. Any thread.
BOOL GetGestureInfo(HGESTUREINFO gesture, GESTUREINFO* info);
BOOL CloseGestureInfoHandle(HGESTUREINFO gesture);
BOOL SetGestureConfig(HWND window, DWORD reserved, UINT count, GESTURECONFIG* config, UINT size);

} // namespace ObLibX
