// The two drivers of the host: from a request in the block to an answer in the block.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include "contracts/ExchangeBlock.h"

namespace obcore {

// Both run on the host's main thread and block it; archive service, provider manager and resource
// module are bound. Each leaves the block's status and its texts as the browser side reads them.

// Open-file-name road: the BOOL for ExchangeBlock::Result. `request` points into the block.
BOOL OpenFileNameDriver(OPENFILENAMEW* request, obcontract::ExchangeBlock& block);

// Dialog road: the HRESULT for ExchangeBlock::Result. COM is initialised by the host.
HRESULT DialogDriver(HWND owner, obcontract::ExchangeBlock& block);

} // namespace obcore
