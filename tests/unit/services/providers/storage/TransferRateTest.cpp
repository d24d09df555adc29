// The estimate of a transfer's speed and of its end, with a given clock.
#include "services/providers/storage/TransferRate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>

using providers::TransferRate;

namespace {

constexpr std::uint64_t kStart = 5'000; // the clock doesn't begin at 0
constexpr std::uint64_t kTick = 50;
constexpr std::uint64_t kMegabyte = 1'000'000;

class TransferRateTest : public testing::Test {
protected:
    // The transfer goes on for so long at so many bytes a second.
    void Pass(std::uint64_t milliseconds, std::uint64_t rate) {
        for (std::uint64_t passed = 0; passed < milliseconds; passed += kTick) {
            now_ += kTick;
            done_ = std::min(total_, done_ + rate * kTick / 1000);
            rate_.Note(now_, done_, total_);
        }
    }
    std::uint64_t Left() const { return rate_.SecondsLeft(now_).value_or(0); }
    std::uint64_t Speed() const { return rate_.BytesPerSecond().value_or(0); }

    std::uint64_t now_ = kStart;
    std::uint64_t done_ = 0;
    std::uint64_t total_ = 100 * kMegabyte;
    TransferRate rate_{kStart};
};

TEST_F(TransferRateTest, ReportsNothingInTheFirstTwoSeconds) {
    Pass(1950, kMegabyte);
    EXPECT_FALSE(rate_.BytesPerSecond());
    EXPECT_FALSE(rate_.SecondsLeft(now_));
    Pass(kTick, kMegabyte);
    EXPECT_TRUE(rate_.BytesPerSecond());
    EXPECT_TRUE(rate_.SecondsLeft(now_));
}

TEST_F(TransferRateTest, IsExactAtASteadySpeedFromTheFirstEstimateOn) {
    Pass(2000, kMegabyte);
    EXPECT_NEAR(static_cast<double>(Speed()), 1e6, 1e3);
    EXPECT_NEAR(static_cast<double>(Left()), 98, 1);
    Pass(60'000, kMegabyte);
    EXPECT_NEAR(static_cast<double>(Speed()), 1e6, 1e3);
    EXPECT_NEAR(static_cast<double>(Left()), 38, 1);
}

TEST_F(TransferRateTest, CountsDownInRealTime) {
    Pass(10'000, kMegabyte);
    std::uint64_t before = Left();
    for (int second = 0; second < 50; ++second) {
        Pass(1000, kMegabyte);
        EXPECT_LE(Left(), before);
        EXPECT_GE(Left() + 2, before);
        before = Left();
    }
}

TEST_F(TransferRateTest, AShortStallChangesNoTime) {
    Pass(20'000, kMegabyte);
    const std::uint64_t before = Left();
    Pass(1000, 0);
    EXPECT_NEAR(static_cast<double>(Left()), static_cast<double>(before - 1), 1);
}

TEST_F(TransferRateTest, FollowsASpeedThatChanged) {
    Pass(10'000, kMegabyte);
    Pass(30'000, 2 * kMegabyte);
    EXPECT_NEAR(static_cast<double>(Speed()), 2e6, 1e5);
    EXPECT_NEAR(static_cast<double>(Left()), 15, 3);
}

TEST_F(TransferRateTest, TheSpeedChangesAtMostOnceASecond) {
    Pass(2000, kMegabyte);
    std::set<std::uint64_t> seen;
    for (int tick = 0; tick < 200; ++tick) { // ten seconds
        Pass(kTick, static_cast<std::uint64_t>(tick) * kMegabyte / 20);
        seen.insert(Speed());
    }
    EXPECT_GE(seen.size(), 5U);
    EXPECT_LE(seen.size(), 11U);
}

TEST_F(TransferRateTest, EstimatesAnewWhenBytesAreSentAgain) {
    Pass(50'000, kMegabyte);
    done_ = 10 * kMegabyte;
    rate_.Note(now_ += kTick, done_, total_);
    Pass(1000, kMegabyte);
    EXPECT_NEAR(static_cast<double>(Speed()), 1e6, 1e3);
    EXPECT_NEAR(static_cast<double>(Left()), 89, 2);
}

TEST_F(TransferRateTest, ReportsNoTimeWhileNothingComesThrough) {
    Pass(10'000, kMegabyte);
    Pass(200'000, 0);
    EXPECT_FALSE(rate_.SecondsLeft(now_));
    EXPECT_EQ(Speed(), 0U);
    Pass(60'000, kMegabyte);
    EXPECT_NEAR(static_cast<double>(Left()), 30, 3);
}

TEST_F(TransferRateTest, ReportsNothingBeforeAByteWasSent) {
    Pass(10'000, 0);
    EXPECT_EQ(Speed(), 0U);
    EXPECT_FALSE(rate_.SecondsLeft(now_));
}

TEST_F(TransferRateTest, ReportsNoTimeWithoutATotal) {
    total_ = 0;
    for (std::uint64_t done = 0; done < 100 * kMegabyte; done += kMegabyte) {
        rate_.Note(now_ += 1000, done, 0);
    }
    EXPECT_NEAR(static_cast<double>(Speed()), 1e6, 1e3);
    EXPECT_FALSE(rate_.SecondsLeft(now_));
}

TEST_F(TransferRateTest, LeavesOutTheTimeOfAQuestion) {
    Pass(20'000, kMegabyte);
    const std::uint64_t before = Left();
    now_ += 3'600'000;
    rate_.LeaveOutUntil(now_);
    EXPECT_NEAR(static_cast<double>(Left()), static_cast<double>(before), 1);
    Pass(5000, kMegabyte);
    EXPECT_NEAR(static_cast<double>(Speed()), 1e6, 1e3);
    EXPECT_NEAR(static_cast<double>(Left()), static_cast<double>(before - 5), 1);
}

TEST_F(TransferRateTest, ReportsOneSecondWhenTheEndIsOverdue) {
    Pass(99'000, kMegabyte);
    EXPECT_EQ(rate_.SecondsLeft(now_ + 10'000), 1U);
}

TEST_F(TransferRateTest, TakesTheLargestSizes) {
    TransferRate rate(0);
    const std::uint64_t most = UINT64_MAX;
    rate.Note(3000, most / 2, most);
    EXPECT_EQ(rate.SecondsLeft(3000), 3U);
    rate.Note(6000, most, most);
    EXPECT_TRUE(rate.BytesPerSecond());
    EXPECT_EQ(rate.SecondsLeft(6000), 1U);
}

} // namespace
