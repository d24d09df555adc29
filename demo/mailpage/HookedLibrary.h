// obwmcore64.dll as the hook in a browser uses it.
#pragma once

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/Exports.h"

namespace mailpage {

// The library of this program's own folder with its four browser-side exports. Stays loaded to the
// end of the process.
struct HookedLibrary {
    // False, with nothing bound, when the file or an export is missing.
    bool Load();

    decltype(&GetOpenFileNameInBrowser) getOpenFileName = nullptr;
    decltype(&FileOpenDialog_ShowInBrowser) show = nullptr;
    decltype(&FileOpenDialog_GetResultInBrowser) getResult = nullptr;
    decltype(&FileOpenDialog_GetResultsInBrowser) getResults = nullptr;

private:
    ObLib::UniqueModule module_;
};

} // namespace mailpage
