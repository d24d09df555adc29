#include "ObLib/Src/Win32/Guarded.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace {

TEST(Guarded, ReturnsTheResultOfTheWork) {
    EXPECT_EQ(7, ObLib::Guarded(-1, [] { return 7; }));
    int runs = 0;
    EXPECT_TRUE(ObLib::RanGuarded([&runs] { ++runs; }));
    EXPECT_EQ(1, runs);
}

TEST(Guarded, ReturnsTheOtherResultWhenTheWorkThrows) {
    EXPECT_EQ(-1, ObLib::Guarded(-1, []() -> int { throw std::bad_alloc(); }));
    EXPECT_EQ(-1, ObLib::Guarded(-1, []() -> int { throw std::runtime_error("text"); }));
    EXPECT_EQ(-1, ObLib::Guarded(-1, []() -> int { throw 5; }));
    EXPECT_FALSE(ObLib::RanGuarded([] { throw std::bad_alloc(); }));
}

TEST(Guarded, RunsTheOtherWorkOnlyAfterAnException) {
    int failures = 0;
    const auto onException = [&failures] { return ++failures, -1; };
    EXPECT_EQ(7, ObLib::GuardedElse([] { return 7; }, onException));
    EXPECT_EQ(0, failures);
    EXPECT_EQ(-1, ObLib::GuardedElse([]() -> int { throw std::bad_alloc(); }, onException));
    EXPECT_EQ(1, failures);
}

} // namespace
