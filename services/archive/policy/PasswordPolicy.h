// What the administrator demands of a new password.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace obarchive {

// Bit values of the classes of characters. The first message's id plus a mask of them is the id of
// the message that asks for these classes.
inline constexpr std::uint32_t kLowerCase = 1; // a-z
inline constexpr std::uint32_t kUpperCase = 2; // A-Z
inline constexpr std::uint32_t kDigit = 4;     // 0-9
inline constexpr std::uint32_t kSymbol =
    8; // every other printable ASCII character, without the blank

// In UTF-8, without the NUL. 7-Zip opens a zip of this kind only with a password up to this length.
inline constexpr std::uint32_t kMostPasswordBytes = 99;

struct PasswordPolicy {
    // In characters; one outside the basic plane counts once. At least one for each class that is
    // asked for, as a shorter password couldn't meet the policy.
    std::uint32_t minimumLength = 1;
    std::uint32_t classes = 0;

    bool AsksForNothing() const { return minimumLength <= 1 && classes == 0; }
};

// The longer length of both views, and the classes of both. A length above kMostPasswordBytes
// counts as that many characters.
PasswordPolicy ReadPasswordPolicy();

// Which classes occur in the text.
std::uint32_t ClassesOf(std::wstring_view text);

std::uint32_t CharactersIn(std::wstring_view text);

bool Meets(const PasswordPolicy& policy, std::wstring_view password);

// The policy in one sentence for a message box. It is the product's text, formatted; this module's
// own when the product's library isn't there.
std::wstring PolicyMessage(const PasswordPolicy& policy);

// A text of the product with the number in place of %d, and %% and && as % and &.
std::wstring Formatted(std::wstring_view text, std::uint32_t number);

// The policy in a short sentence of this module, for the prompt's hint.
std::wstring PolicyHint(const PasswordPolicy& policy);

} // namespace obarchive
