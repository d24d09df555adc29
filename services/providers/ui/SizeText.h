// Sizes of files as the user reads them.
#pragma once

#include <cstdint>
#include <string>

namespace providers {

enum class Rounding : std::uint8_t { Down, Up };

// In whole KB below one MB, with one decimal below 10 MB, in whole MB from there on. A KB has 1,000
// bytes. Rounded as asked, so that a size over a limit is never shown as the limit itself.
std::wstring SizeText(std::uint64_t bytes, Rounding rounding);

} // namespace providers
