#include "services/archive/password/PassPhrase.h"

#include <windows.h>

#include <bcrypt.h>

#include "services/archive/password/PhraseWords.h"

namespace obarchive {
namespace {

constexpr std::uint32_t kLeastWords = 7; // 70 bits
constexpr std::uint32_t kDigits = 100;   // both of them at once
constexpr std::uint32_t kDigitsBits = 6; // rounded down
constexpr std::size_t kLongestPiece = 10;

static_assert((kPhraseWordCount & (kPhraseWordCount - 1)) == 0, "or a mask doesn't draw evenly");

bool Draw(std::uint32_t& number) {
    return BCryptGenRandom(nullptr, reinterpret_cast<PUCHAR>(&number), sizeof number,
                           BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}

// Writes into a buffer that is never outgrown: what doesn't fit is left out.
class Writer {
public:
    explicit Writer(PhraseText& phrase) : phrase_(phrase) {}

    std::size_t Length() const { return length_; }
    bool HasRoom() const { return length_ + kLongestPiece < kPhraseCapacity; }
    void Put(wchar_t unit) {
        if (length_ + 1 < kPhraseCapacity) phrase_.data[length_++] = unit;
    }

private:
    PhraseText& phrase_;
    std::size_t length_ = 0;
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

bool PutDigits(Writer& writer) {
    // Numbers above the last whole hundred would make some digits more likely.
    constexpr std::uint32_t kFair = UINT32_MAX - UINT32_MAX % kDigits;
    std::uint32_t number = 0;
    do {
        if (!Draw(number)) return false;
    } while (number >= kFair);
    writer.Put(static_cast<wchar_t>(L'0' + number / 10 % 10));
    writer.Put(static_cast<wchar_t>(L'0' + number % 10));
    return true;
}

} // namespace

std::uint32_t MakePassPhrase(const PasswordPolicy& policy, PhraseText& phrase) {
    SecureZeroMemory(phrase.data, sizeof phrase.data);
    Writer writer(phrase);
    std::uint32_t words = 0;
    bool drawn = true;
    while (drawn && writer.HasRoom() &&
           (words < kLeastWords || writer.Length() < policy.minimumLength)) {
        drawn = PutWord(writer, (policy.classes & kUpperCase) != 0);
        ++words;
    }
    const bool digits = (policy.classes & kDigit) != 0;
    if (drawn && digits) drawn = PutDigits(writer);
    if (drawn)
        return words * static_cast<std::uint32_t>(kPhraseWordBits) + (digits ? kDigitsBits : 0);
    SecureZeroMemory(phrase.data, sizeof phrase.data);
    return 0;
}

} // namespace obarchive
