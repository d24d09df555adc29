// The lines under the fields of the password prompt.
#pragma once

#include <cstdint>
#include <string>

#include "services/archive/policy/PasswordPolicy.h"

namespace obarchive {

struct PromptState {
    unsigned int problem = 0; // id of a text that tells what was refused or went wrong, 0 for none
    bool differ = false;      // the repetition is wrong already
    bool capsLock = false;
    std::uint32_t phraseBits = 0; // while the fields hold a phrase that was drawn
    bool copied = false;
    bool meetsPolicy = true;
    PasswordPolicy policy;
};

// A line each, the most urgent first, no more than the field under the password takes.
std::wstring HintText(const PromptState& state);

} // namespace obarchive
