// Writing and reading the answers of both paths.
//
// The readers stay inside the block whatever it contains: an offset at which no text can be
// counts as absent, and a text or list that runs to the block's end ends there.
#pragma once

#include <string>
#include <vector>

#include "OBCore/exchange/ExchangeText.h"
#include "OBCore/exchange/PickedFiles.h"
#include "contracts/ExchangeBlock.h"

namespace obcore {

// Host side. Status LinkAnswer with the text at offset 76, cut to 32730 wide characters with its
// NUL. What the request had there is overwritten.
void WriteLinkAnswer(obcontract::ExchangeBlock& block, const std::wstring& text);

// Host side. Status DialogAnswer with full paths from offset 78, each cut to the room left, and the
// closing NUL if there is room for it.
void WriteDialogAnswer(obcontract::ExchangeBlock& block, const std::vector<std::wstring>& paths);

// Host side, after the answer: notes the temporary folder and file past the end of the answer. On
// a status that is no answer both offsets stay 0. A null text gives offset 0 and takes no room; a
// text for which there is no room has the block's end as its offset, which readers take as absent.
void WriteCleanupNames(obcontract::ExchangeBlock& block, const wchar_t* folder,
                       const wchar_t* file);

// Browser side. The list in the file slot from its first string through its closing empty string,
// with all its NULs; empty when there is no slot. A list that was cut by the block's end is closed
// by two NULs in the place of its last characters.
std::wstring ReadFileList(const obcontract::ExchangeBlock& block);

// Browser side, status DialogAnswer: replaces flag, folder and paths of `picked`.
void ReadDialogResult(const obcontract::ExchangeBlock& block, PickedFiles& picked);

} // namespace obcore
