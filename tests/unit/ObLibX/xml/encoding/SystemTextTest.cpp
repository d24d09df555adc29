// The results of this system's side of SystemCalls.h.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/encoding/SystemCalls.h"

namespace {

TEST(SystemText, HasAtMost100UnitsOfWordsForAnyError) {
    std::size_t withWords = 0;
    for (std::uint32_t error = 0; error < 20'000; ++error) {
        const std::wstring text = ObLibX::SystemErrorText(error);
        EXPECT_LE(text.size(), 100u) << error;
        withWords += text.empty() ? 0 : 1;
    }
    EXPECT_GT(withWords, 20u);
    EXPECT_LE(ObLibX::SystemErrorText(0xFFFFFFFF).size(), 100u);
}

TEST(SystemText, CountsWithoutAPlaceAndFailsWhereTheCapacityIsTooSmall) {
    EXPECT_EQ(ObLibX::SystemToWide(65001, "a\xC3\xA9", 3, nullptr, 99), 2);
    wchar_t wide[2] = {};
    EXPECT_EQ(ObLibX::SystemToWide(65001, "a\xC3\xA9", 3, wide, 1), 0);
    EXPECT_EQ(ObLibX::SystemToWide(65001, "a\xC3\xA9", 3, wide, 2), 2);
    EXPECT_EQ(std::wstring(wide, 2), L"a\xE9");
    EXPECT_EQ(ObLibX::SystemFromWide(65001, wide, 2, nullptr, 99, nullptr), 3);
    char bytes[3] = {};
    EXPECT_EQ(ObLibX::SystemFromWide(65001, wide, 2, bytes, 2, nullptr), 0);
    EXPECT_EQ(ObLibX::SystemFromWide(65001, wide, 2, bytes, 3, nullptr), 3);
    EXPECT_EQ(std::string(bytes, 3), "a\xC3\xA9");
}

TEST(SystemText, FailsForAPageThatIsNone) {
    EXPECT_EQ(ObLibX::SystemToWide(65005, "a", 1, nullptr, 0), 0);
    EXPECT_EQ(ObLibX::SystemFromWide(65005, L"a", 1, nullptr, 0, nullptr), 0);
    EXPECT_NE(ObLibX::SystemCodePage(), 0u);
}

} // namespace
