// The words that pass phrases are made of.
#pragma once

#include <cstddef>
#include <string_view>

namespace obarchive {

inline constexpr std::size_t kPhraseWordCount = 1024;
inline constexpr double kPhraseWordBits = 10; // of one word that is drawn by chance

// Lower case letters only; `index` counts from 0 and wraps.
std::string_view PhraseWord(std::size_t index);

// Upper and lower case are the same here.
bool IsPhraseWord(std::wstring_view text);

} // namespace obarchive
