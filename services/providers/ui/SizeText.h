// Sizes of files as the user reads them.
#pragma once

#include <cstdint>
#include <string>

namespace providers {

enum class Rounding : std::uint8_t { Down, Up };

// In whole KB below one MB, with one decimal below 10 MB, in whole MB from there on. A KB has 1,000
// bytes. The rounding lets a size that is too large never read like the one that it exceeds.
std::wstring SizeText(std::uint64_t bytes, Rounding rounding);

} // namespace providers
