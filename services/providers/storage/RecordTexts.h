// Texts in the records and buffers that cross the edge of the module.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// The text of a field or of a buffer with room for `capacity` characters. Nothing for null and for
// a text that doesn't end within them.
std::optional<std::wstring> TextIn(const wchar_t* text, std::size_t capacity);

// An account's key as a caller passes it, without its capacity. Nothing for null and for a text
// that is longer than the record of a profile has room for.
std::optional<std::wstring> AccountKeyIn(const wchar_t* text);

// Copies the text with its NUL, or an empty text when it doesn't fit, for which the result is
// false. Leaves null and a place without room alone.
bool CopyWhole(const std::wstring& text, wchar_t* place, std::uint64_t capacity);

// Copies as much of the text as fits with a NUL, without half a character at its end.
void CopyCut(const std::wstring& text, wchar_t* place, std::uint64_t capacity);

// The record of an account. Its key is empty when it doesn't fit.
obcontract::ProviderProfile ProfileOf(std::uint32_t providerId, const StorageAccount& account);

// The record of a file. Nothing when a text doesn't fit: a link is never cut.
std::optional<obcontract::CloudItem> ItemOf(const obcontract::ProviderProfile& profile,
                                            const std::wstring& name, const std::wstring& link);

// Whether each text ends within its field.
bool IsSound(const obcontract::CloudItem& item);

} // namespace providers
