#include "services/archive/password/PasswordStrength.h"

#include <windows.h>
#include <zxcvbn.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "services/archive/crypto/Secret.h"

namespace obarchive {
namespace {

// The estimate's time grows with the square of the length, and the prompt refuses longer ones.
constexpr std::size_t kMostCharacters = 128;
using NarrowText = WipedBuffer<char, kMostCharacters + 1>;
using FoldedText = WipedBuffer<wchar_t, 4 * kMostCharacters + 1>; // a letter and up to three marks

// For a mark on a letter, such as an accent: whether it is there, and which it is.
constexpr double kBitsOfMark = 2;

struct LevelRow {
    double below; // bits
    StrengthLevel level;
};
// An attacker who has the zip tries some 2^23 passwords a second on one graphics processor: 2^28 in
// half a minute, 2^40 in a day and a half, 2^50 in four years, 2^65 in a hundred thousand.
constexpr LevelRow kLevels[] = {{28, StrengthLevel::VeryWeak},
                                {40, StrengthLevel::Weak},
                                {50, StrengthLevel::Fair},
                                {65, StrengthLevel::Good}};

// One byte for each character, as the estimate counts bytes. A character beyond ASCII becomes its
// low bits, so that the same character is the same byte each time.
void Narrow(std::wstring_view text, NarrowText& narrow) {
    std::size_t length = 0;
    for (const wchar_t unit : text) {
        if (length == kMostCharacters) return;
        if (IS_HIGH_SURROGATE(unit)) continue;
        narrow.data[length++] = static_cast<char>(unit < 0x80 ? unit : 0x80 | (unit & 0x7F));
    }
}

// The length of the piece that the whole text repeats; the text's own length when there is none.
std::size_t LengthOfRepeatedPiece(std::wstring_view text) {
    for (std::size_t length = 1; length * 2 <= text.size(); ++length) {
        if (text.substr(length) == text.substr(0, text.size() - length)) return length;
    }
    return text.size();
}

double BitsOf(std::wstring_view text) {
    NarrowText narrow;
    Narrow(text, narrow);
    return ZxcvbnMatch(narrow.data, nullptr, nullptr);
}

bool IsMark(wchar_t unit) { return unit >= 0x0300 && unit <= 0x036F; }

// The same without the marks on the letters: the word lists are in English, and "pässword" is
// guessed soon after "password".
double BitsWithoutMarks(std::wstring_view text) {
    FoldedText folded;
    const int length = FoldStringW(MAP_COMPOSITE, text.data(), static_cast<int>(text.size()),
                                   folded.data, static_cast<int>(std::size(folded.data)) - 1);
    wchar_t* const end = std::remove_if(folded.data, folded.data + length, &IsMark);
    const auto marks = folded.data + length - end;
    const std::wstring_view plain(folded.data, static_cast<std::size_t>(end - folded.data));
    return marks == 0 ? BitsOf(text) : BitsOf(plain) + static_cast<double>(marks) * kBitsOfMark;
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
    // The estimate itself finds repeated characters only.
    const std::size_t piece = LengthOfRepeatedPiece(password);
    const double times = static_cast<double>(password.size()) / static_cast<double>(piece);
    const std::wstring_view text = password.substr(0, std::min(piece, kMostCharacters));
    const double bits = std::min(BitsOf(text), BitsWithoutMarks(text)) + std::log2(times);
    return {bits, LevelOf(bits)};
}

} // namespace obarchive
