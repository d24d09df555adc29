// The lines under the fields of the password prompt.
#pragma once

#include <cstdint>
#include <string>

#include "services/archive/policy/PasswordPolicy.h"

namespace obarchive {

struct PromptState {
    unsigned int problem = 0; // id of the text about what was refused or went wrong, 0 for none
    bool differ = false;      // the repetition isn't the beginning of the password
    bool capsLock = false;
    std::uint32_t phraseBits = 0; // while the fields contain a suggested phrase
    bool copied = false;
    bool meetsPolicy = true;
    bool beyondAscii = false; // the password has a character that isn't ASCII
    PasswordPolicy policy;
};

// A line each, the most urgent first; never more than the control under the fields has room for.
std::wstring HintText(const PromptState& state);

} // namespace obarchive
