// Writing and taking a request of the open-file-name path.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include "contracts/ExchangeBlock.h"

namespace obcore {

// Browser side: writes the request into a new block. Texts that don't fit are cut; the request's
// own lpstrFile is dropped, and the file slot contains two NULs.
void WriteOpenFileNameRequest(obcontract::ExchangeBlock& block, const OPENFILENAMEW& request);

// Host side: the request with its texts pointing into the block, `owner` as its window, and
// everything that isn't carried left null. Offsets outside the block count as absent.
OPENFILENAMEW ReadOpenFileNameRequest(obcontract::ExchangeBlock& block, HWND owner);

} // namespace obcore
