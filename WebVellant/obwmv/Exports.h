// The exports of obwmcore64.dll. All use the platform's 64-bit convention and are found by name;
// nothing throws out of them.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include <cstdint>

#include "contracts/BrowserContext.h"

extern "C" {

// Browser process. Called by the hook in place of GetOpenFileNameW, with its result. The calling
// thread is blocked and dispatches its messages meanwhile. FALSE for a cancel and for a failure
// after the picker was asked for; before that the browser's own dialog answers.
BOOL GetOpenFileNameInBrowser(OPENFILENAMEW* request, obcontract::BrowserContext* context);

// Browser process. In place of IFileDialog::Show, as above; the failure value is 0x800704C7.
// `dialog` is a key for the two queries below and is never shown by the library.
HRESULT FileOpenDialog_ShowInBrowser(IFileDialog* dialog, HWND owner,
                                     obcontract::BrowserContext* context);

// Browser process, any number of times after FileOpenDialog_ShowInBrowser with the same dialog.
// S_FALSE, with `out` left alone, when the run gave no single path or none at all.
HRESULT FileOpenDialog_GetResultInBrowser(IFileDialog* dialog, IShellItem** out,
                                          obcontract::BrowserContext* context);
HRESULT FileOpenDialog_GetResultsInBrowser(IFileDialog* dialog, IShellItemArray** out,
                                           obcontract::BrowserContext* context);

// Host process, once, on its main thread with COM initialised. `owner` is the browser side's layer
// window, `id` that of the block. -1 on failure, 0 when the block was served; the process is to
// exit with this value.
std::int32_t ShowFileOpenDialogInProcess(HWND owner, std::int32_t id);

// Any process. Asks for the product's help page; false when the archive service can't be bound.
bool WebHelpApp(HWND owner);

// Any process, on a thread that may show windows, which is blocked until the user has closed the
// settings. `owner`, a window of this process or null, is disabled meanwhile. False when the
// library or a module that it needs can't be loaded; true in all other cases, whatever the user
// did.
bool OBConfig(HWND owner);
}
