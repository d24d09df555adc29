// Bounded access to the texts in a block.
//
// Nothing here reads or writes outside the text area, whatever offset the block contains: the
// process at the other end may have been killed, and a block of the same name may be somebody
// else's. Views point into the block and live as long as its mapping.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "contracts/ExchangeBlock.h"

namespace obcore {

// Room, in wide characters, from a byte offset to the block's end. 0 where no text can be: in
// the header, outside the block, or at an odd offset.
std::size_t RoomFrom(std::int32_t offset) noexcept;

// Everything from a byte offset to the block's end; empty where no text can be.
std::wstring_view AreaFrom(const obcontract::ExchangeBlock& block, std::int32_t offset) noexcept;

// The text at a byte offset without its NUL, cut at the block's end; empty when it is absent.
std::wstring_view TextAt(const obcontract::ExchangeBlock& block, std::int32_t offset) noexcept;

// The list at a byte offset: its first string, whatever its length, and on through the closing
// empty string, with all NULs, cut at the block's end. Two NULs are thus a whole list.
std::wstring_view ListAt(const obcontract::ExchangeBlock& block, std::int32_t offset) noexcept;

// The text at a byte offset; empty when it is absent.
std::wstring ReadText(const obcontract::ExchangeBlock& block, std::int32_t offset);

// The byte offset past a text's NUL; 0 when the text is absent.
std::int32_t EndOfText(const obcontract::ExchangeBlock& block, std::int32_t offset) noexcept;

// The byte offset past a list's closing empty string; 0 when the list is absent.
std::int32_t EndOfList(const obcontract::ExchangeBlock& block, std::int32_t offset) noexcept;

// Writes `text` and its NUL, cut to the room left, and returns the offset past the NUL. Without
// room nothing is written and the result is `offset`.
std::int32_t PutText(obcontract::ExchangeBlock& block, std::int32_t offset,
                     std::wstring_view text) noexcept;

// Writes `count` NULs, or as many as there is room for, and returns the offset past them.
std::int32_t PutNuls(obcontract::ExchangeBlock& block, std::int32_t offset,
                     std::size_t count) noexcept;

// The address of a byte offset, for texts that are passed on as pointers. Null where no text can
// be.
wchar_t* PlaceAt(obcontract::ExchangeBlock& block, std::int32_t offset) noexcept;

} // namespace obcore
