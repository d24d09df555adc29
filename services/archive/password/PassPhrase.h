// A pass phrase out of words drawn by chance, for people who don't want to think one up.
#pragma once

#include <cstddef>
#include <cstdint>

#include "services/archive/crypto/Secret.h"
#include "services/archive/policy/PasswordPolicy.h"

namespace obarchive {

inline constexpr std::size_t kPhraseCapacity = 260; // with the NUL

// Holds the phrase and wipes it.
using PhraseText = WipedBuffer<wchar_t, kPhraseCapacity>;

// Writes words with a hyphen between them: at least seven, and as many as the policy's length asks
// for. Where the policy asks for an upper case letter, each word begins with one; for a digit, two
// random ones stand at the end; a hyphen is a symbol. The system's random source draws each word.
// Returns how many bits of chance are in it, or 0 when the source fails; the buffer is empty then.
std::uint32_t MakePassPhrase(const PasswordPolicy& policy, PhraseText& phrase);

} // namespace obarchive
