// The browser side of one request: block written, host run, answer delivered.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include "contracts/BrowserContext.h"

namespace obwmv {

inline constexpr HRESULT kCancelled = static_cast<HRESULT>(0x800704C7);

// Open-file-name road. FALSE on every failure: the page sees a cancelled dialog.
BOOL RunOpenFileNameRequest(OPENFILENAMEW* request, BrowserContext* context);

// Dialog road. 0x800704C7 on every failure. Empties the result map first.
HRESULT RunDialogRequest(IFileDialog* dialog, HWND owner, BrowserContext* context);

}  // namespace obwmv
