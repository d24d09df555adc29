// A pass phrase of random words, for users who don't want to choose a password.
#pragma once

#include <cstddef>
#include <cstdint>

#include "services/archive/crypto/Secret.h"
#include "services/archive/policy/PasswordPolicy.h"

namespace obarchive {

inline constexpr std::size_t kPhraseCapacity = kMostPasswordBytes + 1; // with the NUL

// Contains the phrase and wipes it.
using PhraseText = WipedBuffer<wchar_t, kPhraseCapacity>;

// Writes words with a hyphen between them: at least seven, and as many as the policy's length asks
// for and kMostPasswordBytes has room for. Where the policy asks for an upper case letter, each
// word begins with one. The phrase ends with two random digits where the policy asks for a digit,
// and with as many as its length takes where no further word fits. A hyphen is a symbol. The
// system's random source draws each word and digit. Returns the number of random bits, rounded
// down, or 0 when the source fails; the buffer is empty then.
std::uint32_t MakePassPhrase(const PasswordPolicy& policy, PhraseText& phrase);

} // namespace obarchive
