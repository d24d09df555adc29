// What a pick from the cloud has room for in the record of a file and in the text for the mail.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <type_traits>

#include "services/providers/storage/StorageProvider.h"

namespace providers {

// What the record of a file in the cloud has room for, in characters; a link is never cut.
inline constexpr std::size_t kLongestLink =
    std::extent_v<decltype(obcontract::CloudItem::link)> - 1;

// A link as the text for the mail has it: a pipe, which separates the parts of the text, is "%7C".
std::wstring EscapedLink(const std::wstring& link);

// The name under which a picked file gets into the text for the mail: its name, a blank and its
// link, escaped. The text has no place of its own for links. A pipe in the name becomes a blank.
std::wstring NameWithLink(const PickedFile& file);

// Whether each name with its link fits the record of a file, and all of them fit the text. A link
// is never cut: a picker asks for fewer files instead.
bool FitsLinkText(std::span<const PickedFile> files, const std::wstring& displayName);

} // namespace providers
