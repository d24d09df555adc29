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

TEST(StringList, IsSearchedUpToTheFirstMatch) {
    std::vector<std::wstring> seen;
    const auto has = [&](const wchar_t* list, std::wstring_view wanted) {
        seen.clear();
        return ObLib::AnyOfList(list, [&](std::wstring_view text) {
            seen.emplace_back(text);
            return text == wanted;
        });
    };
    EXPECT_TRUE(has(L"one\0two\0three\0", L"two"));
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"one", L"two"}));
    EXPECT_FALSE(has(L"one\0two\0\0three\0", L"three"));
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"one", L"two"}));
    EXPECT_FALSE(has(L"\0one\0", L"one"));
    EXPECT_EQ(seen, std::vector<std::wstring>());
}

TEST(StringList, EndsAtTheEndOfTheView) {
    EXPECT_EQ((Walked{{L"one", L"tw"}, 6}), Walk(Units(L"one\0tw")));
    EXPECT_EQ((Walked{{L"one"}, 4}), Walk(Units(L"one\0")));
    EXPECT_EQ((Walked{{}, 0}), Walk({}));
}

} // namespace
