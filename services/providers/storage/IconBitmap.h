// An icon of this module as a bitmap.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

// So many pixels wide and high, 32 bits a pixel with premultiplied alpha. Empty when there is no
// such icon.
ObLib::UniqueBitmap BitmapOfIcon(UINT iconId, int size);

} // namespace providers
