// A solid brush that is made again only when its colour changes.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLibX {

// On the thread of the dialogs.
class CachedBrush {
public:
    // The brush belongs to the cache and is valid until another colour is asked for. Null when it
    // can't be made.
    HBRUSH Get(COLORREF color) {
        if (!brush_ || brushColor_ != color) {
            brush_.Reset(CreateSolidBrush(color));
            brushColor_ = color;
        }
        return brush_.Get();
    }

private:
    ObLib::UniqueBrush brush_;
    COLORREF brushColor_ = 0;
};

} // namespace ObLibX
