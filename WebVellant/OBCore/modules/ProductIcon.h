// The icon of the product in the frame of a window.
#pragma once

#include <windows.h>

#include "OBCore/modules/DialogIds.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {

struct IconPolicy : ObLib::NullPolicy<HICON> {
    static void Close(HICON icon) noexcept { DestroyIcon(icon); }
};
using UniqueIcon = ObLib::UniqueResource<IconPolicy>;

// Owns the two icons of one window. A window doesn't own its icons, so this object goes after it;
// WM_DESTROY is early enough for windows of its own thread.
class ProductIcon {
public:
    // Sets both icons from the resource `id`, in the system's sizes for the window's scale. An icon
    // that isn't there leaves the window without one.
    void Set(HWND window, int id = OB_PRODUCT_ICON) { Set(window, id, id); }
    void Set(HWND window, int smallId, int largeId);

private:
    UniqueIcon small_;
    UniqueIcon large_;
};

} // namespace obcore
