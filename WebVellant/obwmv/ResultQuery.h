// What a page asks after a confirmed run of the dialog entry point: the picked files as shell
// items.
//
// Called on a browser thread. The functions may let an exception pass; the exports catch it.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include "contracts/BrowserContext.h"

namespace obwmv {

// The one path of the last run of this dialog as a shell item: S_OK, with a null item when the file
// has gone since, or S_FALSE with `out` left alone when that run didn't give exactly one path. A
// dialog without a result is the browser's.
HRESULT AnswerGetResult(IFileDialog* dialog, IShellItem** out, obcontract::BrowserContext* context);

// All paths of the last run of this dialog in their order, without those that have gone since:
// S_OK, or S_FALSE when the run gave none.
HRESULT AnswerGetResults(IFileDialog* dialog, IShellItemArray** out,
                         obcontract::BrowserContext* context);

} // namespace obwmv
