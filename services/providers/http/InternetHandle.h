// The owner of a handle of the system's HTTP client.
#pragma once

#include <windows.h>
#include <winhttp.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

struct InternetHandlePolicy : ObLib::NullPolicy<HINTERNET> {
    static void Close(Handle handle) noexcept { WinHttpCloseHandle(handle); }
};
using UniqueInternetHandle = ObLib::UniqueResource<InternetHandlePolicy>;

} // namespace providers
