// Writing and reading the answers of both roads.
//
// The readers stay inside the block whatever stands in it: an offset outside, or a list that runs
// to the block's end, ends at the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "OBCore/exchange/PickedFiles.h"
#include "contracts/ExchangeBlock.h"

namespace obcore {

// Host side. Status LinkAnswer with the text at offset 76, cut to 32730 wide characters.
void WriteLinkAnswer(ExchangeBlock& block, const std::wstring& text);

// Host side. Status DialogAnswer with full paths from offset 78, each cut to the room left.
void WriteDialogAnswer(ExchangeBlock& block, const std::vector<std::wstring>& paths);

// Host side, after the answer: notes the temporary folder and file behind what the answer uses. On
// a status that is no answer both offsets stay 0. A null text gives offset 0 and takes no room.
void WriteCleanupNames(ExchangeBlock& block, const wchar_t* folder, const wchar_t* file);

// The text at a byte offset; empty when it is absent.
std::wstring ReadText(const ExchangeBlock& block, std::int32_t offset);

// Browser side. The list in the file slot from its first string through its closing empty string,
// with all its NULs; empty when there is no slot.
std::wstring ReadFileList(const ExchangeBlock& block);

// Browser side, status DialogAnswer.
void ReadDialogResult(const ExchangeBlock& block, PickedFiles& picked);

// Room, in wide characters, from a byte offset to the block's end; 0 for an offset outside.
std::size_t RoomFrom(std::int32_t offset) noexcept;

}  // namespace obcore
