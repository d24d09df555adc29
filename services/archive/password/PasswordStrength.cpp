#include "services/archive/password/PasswordStrength.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cwchar>

#include "services/archive/password/PhraseWords.h"
#include "services/archive/policy/PasswordPolicy.h"

namespace obarchive {
namespace {

// How many characters each class offers to a guesser.
struct PoolRow {
    std::uint32_t bit;
    double size;
};
constexpr PoolRow kPools[] = {{kLowerCase, 26}, {kUpperCase, 26}, {kDigit, 10}, {kSymbol, 32}};
constexpr double kOtherPool = 100; // letters and signs of one more script

constexpr double kFollowerBits = 1; // a character that follows from the one before it

// FakePipeline follow each other here.
constexpr std::wstring_view kRows[] = {L"abcdefghijklmnopqrstuvwxyz",
                                       L"0123456789",
                                       L"1234567890",
                                       L"qwertyuiop",
                                       L"asdfghjkl",
                                       L"zxcvbnm",
                                       L"qwertzuiop",
                                       L"yxcvbnm",
                                       L"azertyuiop"};

// What is tried first, in lower case and without the digits and signs at the end.
constexpr std::wstring_view kKnown[] = {
    L"admin",    L"attachment", L"baseball", L"changeme", L"dragon",   L"football", L"hello",
    L"iloveyou", L"letmein",    L"login",    L"master",   L"monkey",   L"pass",     L"password",
    L"princess", L"p@ssw0rd",   L"passw0rd", L"secret",   L"sunshine", L"welcome"};

struct LevelRow {
    double below; // bits
    StrengthLevel level;
};
constexpr LevelRow kLevels[] = {{28, StrengthLevel::VeryWeak},
                                {40, StrengthLevel::Weak},
                                {55, StrengthLevel::Fair},
                                {70, StrengthLevel::Good}};

wchar_t Lower(wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? unit + 32 : unit; }

bool IsLetter(wchar_t unit) { return Lower(unit) >= L'a' && Lower(unit) <= L'z'; }

double BitsOfOne(std::wstring_view text) {
    const std::uint32_t classes = ClassesOf(text);
    double pool = 0;
    for (const PoolRow& row : kPools) {
        if (classes & row.bit) pool += row.size;
    }
    const auto isOther = [](wchar_t unit) { return unit <= L' ' || unit >= 0x7F; };
    if (std::any_of(text.begin(), text.end(), isOther)) pool += kOtherPool;
    return std::log2(pool);
}

bool AreNeighbours(wchar_t one, wchar_t two) {
    const auto stepsTo = [](std::wstring_view row, wchar_t from, wchar_t to) {
        const auto at = row.find(from);
        return at != row.npos && at + 1 < row.size() && row[at + 1] == to;
    };
    return std::any_of(std::begin(kRows), std::end(kRows), [&](std::wstring_view row) {
        return stepsTo(row, one, two) || stepsTo(row, two, one);
    });
}

// Whether the character at `at` says little after what stands before it: the same or a neighbour of
// the one before, or a repetition of the beginning.
bool Follows(std::wstring_view text, std::size_t at, std::size_t period) {
    if (at == 0) return false;
    const wchar_t before = Lower(text[at - 1]);
    const wchar_t here = Lower(text[at]);
    return before == here || AreNeighbours(before, here) || (period != 0 && at >= period);
}

// The length of the piece that the whole text repeats, 0 when it doesn't.
std::size_t PeriodOf(std::wstring_view text) {
    for (std::size_t period = 1; period * 2 <= text.size(); ++period) {
        if (text.substr(period) == text.substr(0, text.size() - period)) return period;
    }
    return 0;
}

// The word of the list at the start of `text`, 0 when what stands there isn't one.
std::size_t ListedWordAt(std::wstring_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), IsLetter);
    const auto length = static_cast<std::size_t>(end - text.begin());
    return IsPhraseWord(text.substr(0, length)) ? length : 0;
}

double BitsByCharacters(std::wstring_view text) {
    const double one = BitsOfOne(text);
    const std::size_t period = PeriodOf(text);
    double bits = 0;
    for (std::size_t at = 0; at < text.size();) {
        const bool wordStarts = at == 0 || !IsLetter(text[at - 1]);
        const std::size_t word = wordStarts ? ListedWordAt(text.substr(at)) : 0;
        if (word != 0) {
            bits += kPhraseWordBits;
            at += word;
            continue;
        }
        // What stands between words of the list is the same each time.
        const bool separates = at > 0 && !IsLetter(text[at]) && ListedWordAt(text.substr(at + 1));
        bits += separates || Follows(text, at, period) ? kFollowerBits : one;
        ++at;
    }
    return bits;
}

bool IsKnown(std::wstring_view text) {
    while (!text.empty() && !IsLetter(text.back())) text.remove_suffix(1);
    const auto isSame = [&](std::wstring_view known) {
        return std::equal(known.begin(), known.end(), text.begin(), text.end(),
                          [](wchar_t one, wchar_t two) { return one == Lower(two); });
    };
    return std::any_of(std::begin(kKnown), std::end(kKnown), isSame);
}

StrengthLevel LevelOf(double bits) {
    for (const LevelRow& row : kLevels) {
        if (bits < row.below) return row.level;
    }
    return StrengthLevel::Strong;
}

} // namespace

Strength StrengthOf(std::wstring_view password) {
    if (password.empty()) return {};
    const double bits = IsKnown(password) ? kFollowerBits : BitsByCharacters(password);
    return {bits, LevelOf(bits)};
}

} // namespace obarchive
