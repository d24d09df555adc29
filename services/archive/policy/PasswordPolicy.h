// What the administrator asks of a new password.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace obarchive {

// Bit values of the classes of characters. A mask of them, added to the first message's id, is the
// id of the message that asks for them.
inline constexpr std::uint32_t kLowerCase = 1; // a-z
inline constexpr std::uint32_t kUpperCase = 2; // A-Z
inline constexpr std::uint32_t kDigit = 4;     // 0-9
inline constexpr std::uint32_t kSymbol = 8;    // what else stands on a plain keyboard, no blank

struct PasswordPolicy {
    // In characters; one outside the basic plane counts once. Never below one a class, so that the
    // message never tells a length that can't do.
    std::uint32_t minimumLength = 1;
    std::uint32_t classes = 0;

    bool AsksForNothing() const { return minimumLength <= 1 && classes == 0; }
};

// The longer length of both views, and the classes of both. A length above 128 counts as 128, which
// a caller's buffer still takes.
PasswordPolicy ReadPasswordPolicy();

// Which classes occur in the text.
std::uint32_t ClassesOf(std::wstring_view text);

std::uint32_t CharactersIn(std::wstring_view text);

bool Meets(const PasswordPolicy& policy, std::wstring_view password);

// The policy in one sentence for a box: the product's own, with what it doubles for formatting and
// drawing made single. In this module's words when the product's aren't there.
std::wstring PolicyMessage(const PasswordPolicy& policy);

// A product's text with %d as this number, and %% and && as % and &.
std::wstring Formatted(std::wstring_view text, std::uint32_t number);

// The policy in a short sentence of this module, for the prompt's own hint.
std::wstring PolicyHint(const PasswordPolicy& policy);

} // namespace obarchive
