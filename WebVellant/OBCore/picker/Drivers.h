// The two drivers of the host: from a request in the block to an answer in the block.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include "contracts/ExchangeBlock.h"

namespace obcore {

// Both run on the host's main thread and block it; archive service, provider manager and resource
// module are bound. Each writes the block's status and texts for the browser side. An exception
// passes; the block then has no answer.

// Open-file-name entry point: the BOOL for ExchangeBlock::Result. `request` points into the block.
BOOL OpenFileNameDriver(OPENFILENAMEW* request, obcontract::ExchangeBlock& block);

// Dialog entry point: the HRESULT for ExchangeBlock::Result. COM is initialised by the host.
HRESULT DialogDriver(HWND owner, obcontract::ExchangeBlock& block);

} // namespace obcore
