// Shows the dialog toolkit: every kind of control, to be seen and tried.
#include <windows.h>

#include <commctrl.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "demo/gallery/StockPage.h"

int WINAPI wWinMain(HINSTANCE program, HINSTANCE, wchar_t*, int) {
    INITCOMMONCONTROLSEX classes{sizeof classes, ICC_STANDARD_CLASSES | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    ObLib::AppGlobals().SetModule(program, L"", L"");
    return ObLib::RanGuarded([] { gallery::StockPage().DoModal(); }) ? 0 : 1;
}
