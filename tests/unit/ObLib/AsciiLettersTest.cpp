#include "ObLib/Src/AsciiLetters.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

namespace {

// Every unit against the letters as they are written.
TEST(AsciiLetters, AreTheTwentySixOfEitherCase) {
    constexpr std::wstring_view kUpper = L"ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr std::wstring_view kLower = L"abcdefghijklmnopqrstuvwxyz";
    for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<wchar_t>(value);
        const std::size_t upper = value == 0 ? kUpper.npos : kUpper.find(unit);
        const bool isLower = value != 0 && kLower.find(unit) != kLower.npos;
        ASSERT_EQ(upper != kUpper.npos, ObLib::IsAsciiUpper(unit)) << value;
        ASSERT_EQ(isLower, ObLib::IsAsciiLower(unit)) << value;
        ASSERT_EQ(upper != kUpper.npos || isLower, ObLib::IsAsciiLetter(unit)) << value;
        ASSERT_EQ(upper != kUpper.npos ? kLower[upper] : unit, ObLib::FoldAscii(unit)) << value;
    }
}

TEST(AsciiLetters, OfNarrowTextAreThoseOfWideText) {
    for (int value = 0; value <= 0xFF; ++value) {
        const char unit = static_cast<char>(value);
        const auto wide = static_cast<wchar_t>(value);
        ASSERT_EQ(ObLib::IsAsciiUpper(wide), ObLib::IsAsciiUpper(unit)) << value;
        ASSERT_EQ(ObLib::IsAsciiLower(wide), ObLib::IsAsciiLower(unit)) << value;
        ASSERT_EQ(ObLib::IsAsciiLetter(wide), ObLib::IsAsciiLetter(unit)) << value;
        ASSERT_EQ(static_cast<char>(ObLib::FoldAscii(wide)), ObLib::FoldAscii(unit)) << value;
    }
}

} // namespace
