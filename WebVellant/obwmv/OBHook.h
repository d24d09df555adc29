// The decision at the library's edge: who answers a page's request for a file.
//
// The functions here may let an exception pass; the exports catch it. All of them run on the
// browser thread that made the call, which is held until they return.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include <cstdint>
#include <optional>

#include "contracts/BrowserContext.h"

namespace obwmv {

// How far a request has come. It says who answers after an exception: while Deciding nobody has
// asked the user, and the browser's own dialog can; once Answering, a dialog has been asked for and
// a second one must not follow.
enum class Progress { Deciding, Answering };

// Open-file-name road. The result for the page, from the picker or from the browser's own dialog
// inside the library's activation context; nothing when the library can't work in this process and
// the browser's dialog is to be asked outside it. `hwndOwner` holds its value again at the end.
std::optional<BOOL> AnswerOpenFileName(OPENFILENAMEW* request, obcontract::BrowserContext* context,
                                       Progress& progress);

// The same on the dialog road.
std::optional<HRESULT> AnswerShow(IFileDialog* dialog, HWND owner,
                                  obcontract::BrowserContext* context, Progress& progress);

// The one path of the last run of this dialog as a shell item: S_OK, or S_FALSE with `out` left
// alone when that run didn't give exactly one path. A dialog without a result is the browser's.
HRESULT AnswerGetResult(IFileDialog* dialog, IShellItem** out, obcontract::BrowserContext* context);

// All paths of the last run of this dialog in their order: S_OK, or S_FALSE when there is none.
HRESULT AnswerGetResults(IFileDialog* dialog, IShellItemArray** out,
                         obcontract::BrowserContext* context);

// Host process: binds all modules, runs one request between LogLaunch and LogExit. -1 on failure,
// else HostEntry's result.
int AnswerInHost(HWND owner, std::uint32_t id);

// Asks the archive service for the help page; false when the service can't be bound.
bool AnswerWebHelp(HWND owner);

} // namespace obwmv
