// Which font takes the place of another.
#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/dialog/FontSubstitution.h"

namespace {

using ObLibX::FontKey;
using ObLibX::FontRequest;
using ObLibX::FontSubstitution;
using ObLibX::kAnyFontSize;

std::wstring Applied(const FontSubstitution& table, const wchar_t* name, std::int32_t size,
                     std::int32_t weight = 400, std::int32_t style = 0) {
    return FontKey(table.Apply({name, size, weight, style})).CStr();
}

TEST(FontKeyTest, IsNameInLowerCaseSizeWeightAndStyle) {
    EXPECT_STREQ(L"segoe ui/9/400/0", FontKey({L"Segoe UI", 9}).CStr());
    EXPECT_STREQ(L"arial/-1/700/7", FontKey({L"ARIAL", -1, 700, 7}).CStr());
}

TEST(FontSubstitutionTest, KeepsWhatHasNoEntry) {
    FontSubstitution table;
    EXPECT_EQ(L"arial/8/400/0", Applied(table, L"Arial", 8));
    table.Add(L"Tahoma", kAnyFontSize, L"Segoe UI", 9);
    table.Add(L"Arial", 8, L"Segoe UI", 9);
    EXPECT_EQ(L"arial/10/400/0", Applied(table, L"Arial", 10));
}

TEST(FontSubstitutionTest, ReplacesNameAndSizeWhereTheEntryHasASize) {
    FontSubstitution table;
    table.Add(L"MS Shell Dlg", 8, L"Segoe UI", 9);
    EXPECT_EQ(L"segoe ui/9/400/0", Applied(table, L"ms shell dlg", 8));
    EXPECT_EQ(L"segoe ui/9/700/2", Applied(table, L"MS Shell Dlg", 8, 700, 2));
}

TEST(FontSubstitutionTest, ReplacesOnlyTheNameWhereTheEntryIsForAnySize) {
    FontSubstitution table;
    table.Add(L"Tahoma", kAnyFontSize, L"Segoe UI", 9);
    EXPECT_EQ(L"segoe ui/11/400/0", Applied(table, L"Tahoma", 11));
    EXPECT_EQ(L"segoe ui/-1/400/0", Applied(table, L"Tahoma", -1));
}

TEST(FontSubstitutionTest, PrefersTheEntryOfTheSize) {
    FontSubstitution table;
    table.Add(L"Tahoma", kAnyFontSize, L"Arial", kAnyFontSize);
    table.Add(L"Tahoma", 8, L"Segoe UI", 9);
    for (const std::int32_t weight : {400, 700}) {
        const std::wstring end = L"/" + std::to_wstring(weight) + L"/0";
        EXPECT_EQ(L"segoe ui/9" + end, Applied(table, L"Tahoma", 8, weight));
        EXPECT_EQ(L"arial/10" + end, Applied(table, L"Tahoma", 10, weight));
    }
}

TEST(FontSubstitutionTest, ReplacesOnce) {
    FontSubstitution table;
    table.Add(L"A", kAnyFontSize, L"B", kAnyFontSize);
    table.Add(L"B", kAnyFontSize, L"C", kAnyFontSize);
    EXPECT_EQ(L"b/9/400/0", Applied(table, L"A", 9));
}

TEST(FontSubstitutionTest, KeepsTheFirstOfTwoEntriesOfOneFont) {
    FontSubstitution table;
    table.Add(L"A", 8, L"B", 9);
    table.Add(L"a", 8, L"C", 10);
    EXPECT_EQ(L"b/9/400/0", Applied(table, L"A", 8));
}

} // namespace
