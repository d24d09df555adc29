// The real library beside the bench program, with its browser-side exports.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/Exports.h"

namespace bench {

struct Library {
    explicit Library(const wchar_t* path)
        : module(LoadLibraryW(path)),
          getOpenFileName(Find<decltype(&GetOpenFileNameInBrowser)>("GetOpenFileNameInBrowser")),
          show(Find<decltype(&FileOpenDialog_ShowInBrowser)>("FileOpenDialog_ShowInBrowser")),
          getResult(Find<decltype(&FileOpenDialog_GetResultInBrowser)>(
              "FileOpenDialog_GetResultInBrowser")) {}

    explicit operator bool() const noexcept {
        return module && getOpenFileName && show && getResult;
    }

    ObLib::UniqueModule module;
    decltype(&GetOpenFileNameInBrowser) getOpenFileName;
    decltype(&FileOpenDialog_ShowInBrowser) show;
    decltype(&FileOpenDialog_GetResultInBrowser) getResult;

private:
    template <class Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(
            reinterpret_cast<void*>(GetProcAddress(module.Get(), name)));
    }
};

inline constexpr wchar_t kLibraryPath[] = L"C:\\app\\obwmcore64.dll";

} // namespace bench
