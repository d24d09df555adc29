// How hard a password is to guess: for the bar in the prompt, and for the question before a very
// weak password is taken.
#pragma once

#include <string_view>

namespace obarchive {

enum class StrengthLevel { None, VeryWeak, Weak, Fair, Good, Strong };

struct Strength {
    // The binary logarithm of the guesses that somebody needs who tries likely passwords first.
    double bits = 0;
    StrengthLevel level = StrengthLevel::None;
};

// Common passwords, words, names, dates, sequences, patterns of the keyboard and repeated pieces
// count for few bits. An empty text has level None. Only the first 128 characters count. Any
// thread; throws std::bad_alloc. No copy of the text is left in memory.
Strength StrengthOf(std::wstring_view password);

} // namespace obarchive
