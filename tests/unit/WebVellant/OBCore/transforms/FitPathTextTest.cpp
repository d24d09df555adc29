// Fitting a text, measured at one unit a character unless a test sets another width.
#include <gtest/gtest.h>

#include <string>

#include "OBCore/transforms/FitPathText.h"

namespace {

int Length(const std::wstring& text) { return static_cast<int>(text.size()); }

std::wstring Ellipsize(int width, const std::wstring& text) {
    return obcore::EllipsizeEnd(&Length, width, text);
}

std::wstring Fit(int width, const std::wstring& label, const std::wstring& path) {
    return obcore::FitPathText(&Length, width, label, path);
}

TEST(EllipsizeEnd, ReturnsATextThatFitsAsItIs) {
    EXPECT_EQ(Ellipsize(5, L"abcde"), L"abcde");
    EXPECT_EQ(Ellipsize(0, L""), L"");
}

TEST(EllipsizeEnd, CutsCharactersUntilTheTextFitsWithThreeDots) {
    EXPECT_EQ(Ellipsize(9, L"abcdefghij"), L"abcdef...");
    EXPECT_EQ(Ellipsize(4, L"abcdefghij"), L"a...");
}

TEST(EllipsizeEnd, MeasuresTheWholeTextWithTheDotsFirst) {
    // One that is too wide alone stays whole if it fits with the dots: the dots pull it together.
    const auto narrowDots = [](const std::wstring& text) {
        return Length(text) - (text.ends_with(L"...") ? 5 : 0);
    };
    EXPECT_EQ(obcore::EllipsizeEnd(narrowDots, 4, L"abcdef"), L"abcdef...");
}

TEST(EllipsizeEnd, KeepsNoCharacterWhereOnlyTheDotsFit) {
    EXPECT_EQ(Ellipsize(3, L"abcdefghij"), L"...");
}

TEST(EllipsizeEnd, CutsNoSurrogatePair) {
    const std::wstring face = L"\xD83D\xDE00";
    EXPECT_EQ(Ellipsize(6, L"ab" + face + L"cdef"), L"ab..."); // half of the pair would fit
    EXPECT_EQ(Ellipsize(7, L"ab" + face + L"cdef"), L"ab" + face + L"...");
    EXPECT_EQ(Ellipsize(4, face + face), face + face);
    EXPECT_EQ(Ellipsize(4, face + face + L"a"), L"...");
}

TEST(EllipsizeEnd, EndsWithTheDotsWhereNothingFits) {
    EXPECT_EQ(Ellipsize(2, L"abcdefghij"), L"...");
    EXPECT_EQ(Ellipsize(-1, L""), L"...");
}

TEST(FitPathText, JoinsWhatFitsTogether) {
    EXPECT_EQ(Fit(10, L"Do: ", L"a\\b.ab"), L"Do: a\\b.ab");
    EXPECT_EQ(Fit(4, L"Do: ", L""), L"Do: ");
}

TEST(FitPathText, PutsAPathThatFitsAloneOnTheSecondLine) {
    EXPECT_EQ(Fit(9, L"Do: ", L"a\\b.ab"), L"Do: \r\na\\b.ab");
    EXPECT_EQ(Fit(6, L"Do: ", L"a\\b.ab"), L"Do: \r\na\\b.ab");
}

TEST(FitPathText, CutsANameWithoutAFolder) {
    EXPECT_EQ(Fit(8, L"Do: ", L"abcdefghij"), L"Do: \r\nabcde...");
}

TEST(FitPathText, CutsBothLinesWhereTheLastPartIsTooLong) {
    EXPECT_EQ(Fit(8, L"Do: ", L"C:\\folder\\abcdefghij"), L"Do: C...\r\n\\abcd...");
}

TEST(FitPathText, KeepsTheFirstLineWholeWhereOnlyTheLastPartIsTooLong) {
    EXPECT_EQ(Fit(8, L"Do: ", L"C:\\abcdefghij"), L"Do: C:\r\n\\abcd...");
}

TEST(FitPathText, PutsTheLongestTailThatFitsOnTheSecondLine) {
    // \c\file.txt has 11 characters, \bbb\c\file.txt has 15.
    EXPECT_EQ(Fit(15, L"Do: ", L"C:\\aaaa\\bbb\\c\\file.txt"),
              L"Do: C:\\aaaa\r\n\\bbb\\c\\file.txt");
    EXPECT_EQ(Fit(14, L"Do: ", L"C:\\aaaa\\bbb\\c\\file.txt"), L"Do: C:\\aaaa...\r\n\\c\\file.txt");
}

TEST(FitPathText, TakesTheLastPartAloneWhereNoLongerTailFits) {
    EXPECT_EQ(Fit(9, L"Do: ", L"C:\\aaaa\\bbb\\c\\file.txt"), L"Do: C:...\r\n\\file.txt");
}

TEST(FitPathText, StartsATailAtABackslashOnly) {
    EXPECT_EQ(Fit(12, L"Do: ", L"aaaa\\bbbb\\cccc"), L"Do: aaaa\r\n\\bbbb\\cccc");
    EXPECT_EQ(Fit(7, L"", L"\\\\server\\x"), L"\\\\se...\r\n\\x");
}

} // namespace
