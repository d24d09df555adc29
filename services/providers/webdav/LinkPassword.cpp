#include "services/providers/webdav/LinkPassword.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <string_view>

#include "services/providers/http/HttpPolicy.h"

namespace providers {
namespace {

constexpr std::string_view kSmall = "abcdefghijkmnpqrstuvwxyz";
constexpr std::string_view kCapital = "ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr std::string_view kDigit = "23456789";
constexpr int kGroup = 4;
constexpr int kGroups = 4;
constexpr int kLeast = 8;    // characters that a password has in any case
constexpr int kMost = 255;   // characters of the longest one that is made
constexpr int kSymbols = 56; // of all three kinds
static_assert(kSmall.size() + kCapital.size() + kDigit.size() == kSymbols);

char Symbol(unsigned index) {
    if (index < kSmall.size()) return kSmall[index];
    index -= static_cast<unsigned>(kSmall.size());
    return index < kCapital.size() ? kCapital[index] : kDigit[index - kCapital.size()];
}

// A symbol of those, each with the same chance. False when the system has no random numbers.
bool AddSymbol(char& symbol) {
    constexpr unsigned kFair = 256 / kSymbols * kSymbols;
    BYTE byte = 0;
    do {
        if (BCryptGenRandom(nullptr, &byte, 1, BCRYPT_USE_SYSTEM_PREFERRED_RNG) != 0) return false;
    } while (byte >= kFair);
    symbol = Symbol(byte % kSymbols);
    return true;
}

bool HasAny(std::string_view text, std::string_view kind) {
    return text.find_first_of(kind) != std::string_view::npos;
}

bool FillFirstGroup(char* text) {
    const std::string_view group(text, kGroup);
    do {
        for (int index = 0; index < kGroup; ++index) {
            if (!AddSymbol(text[index])) return false;
        }
    } while (!HasAny(group, kSmall) || !HasAny(group, kCapital) || !HasAny(group, kDigit));
    return true;
}

// A server that takes fewer characters decides, also where its rules contradict each other.
int LengthFor(const ShareRules& rules) {
    constexpr int kUsual = kGroups * (kGroup + 1) - 1;
    const int length = std::clamp(rules.shortestPassword, kUsual, kMost);
    return rules.longestPassword > 0 ? std::min(length, rules.longestPassword) : length;
}

} // namespace

std::optional<ObLib::Secret> NewLinkPassword(const ShareRules& rules) {
    ObLib::WipedBuffer<char, kMost + 1> text;
    const int length = LengthFor(rules);
    if (length < kLeast || !FillFirstGroup(text.data)) return {};
    for (int index = kGroup; index < length; ++index) {
        const bool isHyphen = index % (kGroup + 1) == kGroup;
        if (isHyphen) {
            text.data[index] = '-';
        } else if (!AddSymbol(text.data[index])) {
            return {};
        }
    }
    return ObLib::Secret(text.data);
}

bool IsLinkPasswordPolicyOn() { return IsCloudPolicyOn(L"RequireLinkPassword"); }

} // namespace providers
