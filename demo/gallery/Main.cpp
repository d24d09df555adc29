// Shows the dialog toolkit: every kind of control, to be seen and tried. An argument names the page
// to show; without one OK leads to the next page, and Cancel ends.
#include <windows.h>

#include <commctrl.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "demo/gallery/Pages.h"
#include "demo/gallery/ScrolledPanel.h"

namespace {

// False when no page has this name.
bool ShowPages(const wchar_t* name) {
    const auto pages = gallery::PagesNamed(name);
    for (const gallery::PageRow& page : pages) {
        if (page.make()->DoModal() != IDOK) break;
    }
    return !pages.empty();
}

} // namespace

int WINAPI wWinMain(HINSTANCE program, HINSTANCE, wchar_t* page, int) {
    INITCOMMONCONTROLSEX classes{sizeof classes, ICC_STANDARD_CLASSES | ICC_PROGRESS_CLASS |
                                                     ICC_UPDOWN_CLASS | ICC_DATE_CLASSES |
                                                     ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    ObLib::AppGlobals().SetModule(program, L"", L"");
    gallery::RegisterScrolledPanel(program);
    ObLibX::UseFlatControls();
    return ObLib::Guarded(false, [&] { return ShowPages(page); }) ? 0 : 1;
}
