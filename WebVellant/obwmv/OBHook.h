// The decision at the library's edge: who answers a page's request for a file.
//
// The functions here may let an exception pass; the exports catch it. All of them run on the
// browser thread that made the call, which is blocked until they return.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include <optional>

#include "contracts/BrowserContext.h"

namespace obwmv {

// How far a request has come, which decides who answers after an exception. Deciding: the user has
// seen no dialog, and the browser's own dialog answers. Answering: a dialog has been asked for, and
// a second one must not follow.
enum class Progress { Deciding, Answering };

// Open-file-name entry point. The result for the page, from the picker or from the browser's own
// dialog inside the library's activation context; nothing when the library can't work in this
// process, and the browser's dialog is to be asked outside the context. The request's `hwndOwner`
// is replaced during the run and has its old value again at the end.
std::optional<BOOL> AnswerOpenFileName(OPENFILENAMEW* request, obcontract::BrowserContext* context,
                                       Progress& progress);

// The same for the dialog entry point; `owner` is replaced for the run in the same way.
std::optional<HRESULT> AnswerShow(IFileDialog* dialog, HWND owner,
                                  obcontract::BrowserContext* context, Progress& progress);

} // namespace obwmv
