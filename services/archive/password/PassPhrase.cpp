#include "services/archive/password/PassPhrase.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>

#include "services/archive/password/PhraseWords.h"

namespace obarchive {
namespace {

constexpr std::uint32_t kLeastWords = 7; // 70 bits
constexpr std::uint32_t kLeastDigits = 2;
constexpr std::uint32_t kBitsOfTenDigits = 33; // rounded down
constexpr std::uint32_t kLongestPiece = 9;     // a hyphen and a word

static_assert((kPhraseWordCount & (kPhraseWordCount - 1)) == 0,
              "a mask draws each word equally often only from a power of two");
static_assert(kLeastWords * kLongestPiece + kLeastDigits <= kMostPasswordBytes);

bool Draw(std::uint32_t& number) {
    return BCryptGenRandom(nullptr, reinterpret_cast<PUCHAR>(&number), sizeof number,
                           BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}

// Appends to the phrase; what the buffer has no room for is left out.
class Writer {
public:
    explicit Writer(PhraseText& phrase) : phrase_(phrase) {}

    std::uint32_t Length() const { return length_; }
    void Put(wchar_t unit) {
        if (length_ + 1 < kPhraseCapacity) phrase_.data[length_++] = unit;
    }

private:
    PhraseText& phrase_;
    std::uint32_t length_ = 0;
};

bool PutWord(Writer& writer, bool upper) {
    std::uint32_t number = 0;
    const bool drawn = Draw(number);
    if (writer.Length() != 0) writer.Put(L'-');
    bool first = true;
    for (const char letter : PhraseWord(number & (kPhraseWordCount - 1))) {
        writer.Put(static_cast<wchar_t>(first && upper ? letter - 32 : letter));
        first = false;
    }
    return drawn;
}

bool PutDigit(Writer& writer) {
    // Numbers above the last whole ten would make some digits more likely.
    constexpr std::uint32_t kFair = UINT32_MAX - UINT32_MAX % 10;
    std::uint32_t number = 0;
    do {
        if (!Draw(number)) return false;
    } while (number >= kFair);
    writer.Put(static_cast<wchar_t>(L'0' + number % 10));
    return true;
}

// Random bits of the phrase, 0 when the random source failed.
std::uint32_t PutPhrase(const PasswordPolicy& policy, Writer& writer) {
    const std::uint32_t least = std::min(policy.minimumLength, kMostPasswordBytes);
    const std::uint32_t askedDigits = policy.classes & kDigit ? kLeastDigits : 0;
    std::uint32_t words = 0;
    const auto wantsWord = [&] {
        const bool fits = writer.Length() + kLongestPiece + askedDigits <= kMostPasswordBytes;
        return words < kLeastWords || (fits && writer.Length() + askedDigits < least);
    };
    for (; wantsWord(); ++words) {
        if (!PutWord(writer, (policy.classes & kUpperCase) != 0)) return 0;
    }
    const std::uint32_t missing = least > writer.Length() ? least - writer.Length() : 0;
    const std::uint32_t digits = std::max(askedDigits, missing);
    for (std::uint32_t count = 0; count < digits; ++count) {
        if (!PutDigit(writer)) return 0;
    }
    return words * kPhraseWordBits + digits * kBitsOfTenDigits / 10;
}

} // namespace

std::uint32_t MakePassPhrase(const PasswordPolicy& policy, PhraseText& phrase) {
    SecureZeroMemory(phrase.data, sizeof phrase.data);
    Writer writer(phrase);
    const std::uint32_t bits = PutPhrase(policy, writer);
    if (bits == 0) SecureZeroMemory(phrase.data, sizeof phrase.data);
    return bits;
}

} // namespace obarchive
