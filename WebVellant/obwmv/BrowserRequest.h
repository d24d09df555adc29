// The browser side of one request: block written, host run, answer delivered.
//
// Both run on the calling browser thread and block it, with its messages pumped, until the host has
// ended. Neither falls back to the browser's own dialog.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include "contracts/BrowserContext.h"
#include "contracts/ExchangeBlock.h"

namespace obwmv {

// Both a cancel by the user and a failure of the host.
using obcontract::kCancelled;

// Open-file-name entry point. Of `request` only lpstrFile is written, as long as the host's list
// is: the host kept to nMaxFile. FALSE on every failure: the page sees a cancelled dialog. Throws
// std::bad_alloc only.
BOOL RunOpenFileNameRequest(OPENFILENAMEW* request, obcontract::BrowserContext* context);

// Dialog entry point. Empties the result map first, and keeps what was picked there under `dialog`,
// of which only GetOptions is called. 0x800704C7 on every failure. Throws std::bad_alloc only.
HRESULT RunDialogRequest(IFileDialog* dialog, HWND owner, obcontract::BrowserContext* context);

} // namespace obwmv
