// How hard a password is to guess, roughly, for the bar in the prompt. Nothing is refused by it.
#pragma once

#include <string_view>

namespace obarchive {

enum class StrengthLevel { None, VeryWeak, Weak, Fair, Good, Strong };

struct Strength {
    double bits =
        0; // the power of two of the guesses that somebody needs who knows how people choose
    StrengthLevel level = StrengthLevel::None;
};

// Runs of one character, of neighbours in the alphabet or on the keyboard, and repeated beginnings
// count little; words of this service's own list count as one choice of the list; a few passwords
// that everybody tries first count nothing. Keeps no copy of the text.
Strength StrengthOf(std::wstring_view password);

} // namespace obarchive
