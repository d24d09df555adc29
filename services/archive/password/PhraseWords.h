// The word list for suggested pass phrases.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace obarchive {

inline constexpr std::size_t kPhraseWordCount = 1024;
inline constexpr std::uint32_t kPhraseWordBits = 10; // of one word that is drawn at random

// Lower case letters only; `index` counts from 0 and wraps.
std::string_view PhraseWord(std::size_t index);

} // namespace obarchive
