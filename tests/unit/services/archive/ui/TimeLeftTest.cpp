#include "services/archive/ui/TimeLeft.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <vector>

namespace {

using obarchive::TimeLeft;
using obarchive::TimeLeftText;

constexpr std::uint64_t kStart = 1'000'000;
constexpr std::uint64_t kTick = 100; // milliseconds

// Simulates a run whose speed is given for each moment, in bytes a millisecond, and collects the
// estimate at each tick; 0 where there is none.
std::vector<std::uint64_t> Play(std::uint64_t total, std::uint64_t length,
                                const std::function<double(std::uint64_t)>& speed) {
    TimeLeft timeLeft(kStart);
    std::vector<std::uint64_t> shown;
    double done = 0;
    for (std::uint64_t at = 0; at <= length; at += kTick) {
        timeLeft.Note(kStart + at, static_cast<std::uint64_t>(done), total);
        shown.push_back(timeLeft.Seconds(kStart + at).value_or(0));
        done += speed(at) * kTick;
    }
    return shown;
}

TEST(TimeLeftTest, ThereIsNoEstimateInTheFirstTwoSeconds) {
    const auto shown = Play(30'000'000, 3000, [](std::uint64_t) { return 1000.0; });
    for (std::size_t tick = 0; tick < 20; ++tick) EXPECT_EQ(shown[tick], 0U) << tick;
    EXPECT_EQ(shown[20], 28U);
}

TEST(TimeLeftTest, ASteadyRunCountsDownSecondBySecond) {
    const auto shown = Play(30'000'000, 29'900, [](std::uint64_t) { return 1000.0; });
    for (std::size_t tick = 20; tick < shown.size(); ++tick) {
        EXPECT_EQ(shown[tick], (300 - tick + 9) / 10) << tick;
    }
}

TEST(TimeLeftTest, ThereIsNoEstimateWithoutATotalOrBeforeAnythingIsDone) {
    for (const std::uint64_t value : Play(0, 5000, [](std::uint64_t) { return 1000.0; })) {
        EXPECT_EQ(value, 0U);
    }
    for (const std::uint64_t value : Play(1000, 5000, [](std::uint64_t) { return 0.0; })) {
        EXPECT_EQ(value, 0U);
    }
}

// As with a disk: every second is four times as fast or slow as the one before.
TEST(TimeLeftTest, AnUnsteadySpeedDoesNotMakeItJump) {
    const auto speed = [](std::uint64_t at) { return at / 1000 % 2 ? 1600.0 : 400.0; };
    const auto shown = Play(60'000'000, 50'000, speed);
    int jumps = 0;
    for (std::size_t tick = 30; tick + 1 < shown.size(); ++tick) {
        const auto step =
            static_cast<long long>(shown[tick + 1]) - static_cast<long long>(shown[tick]);
        if (step > 0 || step < -1) ++jumps;
    }
    EXPECT_LE(jumps, 4);
}

TEST(TimeLeftTest, AShortStallDoesNotMakeItJump) {
    const auto speed = [](std::uint64_t at) { return at >= 10'000 && at < 11'000 ? 0.0 : 1000.0; };
    const auto shown = Play(40'000'000, 39'000, speed);
    for (std::size_t tick = 20; tick + 1 < shown.size(); ++tick) {
        const auto step =
            static_cast<long long>(shown[tick + 1]) - static_cast<long long>(shown[tick]);
        EXPECT_LE(step, 0) << tick;
        EXPECT_GE(step, -1) << tick;
    }
}

TEST(TimeLeftTest, ALastingChangeOfSpeedIsFollowed) {
    const auto speed = [](std::uint64_t at) { return at < 10'000 ? 1000.0 : 250.0; };
    const auto shown = Play(40'000'000, 60'000, speed);
    EXPECT_LE(shown[100], 31U);
    // At 30 seconds 15 MB are done, and the other 25 take 100 seconds more.
    EXPECT_GE(shown[300], 80U);
    EXPECT_LE(shown[300], 110U);
}

TEST(TimeLeftTest, ALateRunStaysAtOneSecondAndNeverBelow) {
    const auto shown =
        Play(5'000'000, 20'000, [](std::uint64_t at) { return at < 4500 ? 1000.0 : 1.0; });
    for (std::size_t tick = 20; tick < shown.size(); ++tick) EXPECT_GE(shown[tick], 1U);
}

TEST(TimeLeftTest, MoreReadThanTheTotalShowsOneSecond) {
    TimeLeft timeLeft(kStart);
    timeLeft.Note(kStart + 1000, 500, 400);
    timeLeft.Note(kStart + 3000, 900, 400);
    EXPECT_EQ(timeLeft.Seconds(kStart + 3000), 1U);
}

TEST(TimeLeftTest, TheTextIsCoarserTheLongerItTakes) {
    const struct {
        std::uint64_t seconds;
        const wchar_t* text;
    } rows[] = {
        {1, L"A few seconds left"},        {5, L"A few seconds left"},
        {6, L"About 10 seconds left"},     {10, L"About 10 seconds left"},
        {11, L"About 15 seconds left"},    {55, L"About 55 seconds left"},
        {56, L"About one minute left"},    {89, L"About one minute left"},
        {90, L"About 2 minutes left"},     {149, L"About 2 minutes left"},
        {150, L"About 3 minutes left"},    {3600, L"About 60 minutes left"},
        {7199, L"About 120 minutes left"}, {7200, L"About 2 hours left"},
        {8999, L"About 2 hours left"},     {9000, L"About 3 hours left"},
    };
    for (const auto& row : rows) EXPECT_EQ(TimeLeftText(row.seconds), row.text) << row.seconds;
}

} // namespace
