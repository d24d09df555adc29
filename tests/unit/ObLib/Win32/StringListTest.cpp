#include "ObLib/Src/Win32/StringList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Walked {
    std::vector<std::wstring> texts;
    std::size_t units;

    bool operator==(const Walked&) const = default;
};

Walked Walk(std::wstring_view list) {
    Walked walked{};
    walked.units =
        ObLib::WalkList(list, [&](std::wstring_view text) { walked.texts.emplace_back(text); });
    return walked;
}

template <std::size_t Size>
std::wstring_view Units(const wchar_t (&units)[Size]) {
    return {units, Size - 1};
}

TEST(StringList, EndsAtTheEmptyText) {
    EXPECT_EQ((Walked{{L"one", L"two"}, 9}), Walk(Units(L"one\0two\0\0three\0\0")));
    EXPECT_EQ((Walked{{}, 1}), Walk(Units(L"\0one\0\0")));
}

TEST(StringList, IsMeasuredThroughTheNulThatClosesIt) {
    EXPECT_EQ(9U, ObLib::ListLength(L"one\0two\0\0three\0"));
    EXPECT_EQ(1U, ObLib::ListLength(L""));
}

TEST(StringList, EndsAtTheEndOfTheView) {
    EXPECT_EQ((Walked{{L"one", L"tw"}, 6}), Walk(Units(L"one\0tw")));
    EXPECT_EQ((Walked{{L"one"}, 4}), Walk(Units(L"one\0")));
    EXPECT_EQ((Walked{{}, 0}), Walk({}));
}

} // namespace
