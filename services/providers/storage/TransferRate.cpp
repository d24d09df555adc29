#include "services/providers/storage/TransferRate.h"

#include <algorithm>
#include <cmath>

namespace providers {
namespace {

constexpr std::uint64_t kSilence = 2000;       // milliseconds, as all below
constexpr std::uint64_t kSampleLength = 500;   // shorter ones measure a buffer
constexpr std::uint64_t kShownFor = 1000;      // a rate, before the next one
constexpr double kMemory = 6000;               // the time constant of the average
constexpr double kLeastTolerance = 3000;       // the end may be off by this much
constexpr double kToleratedShare = 0.2;        // or by this share of what is left
constexpr std::uint64_t kLongestAstray = 1500; // before the end is set anew
constexpr double kLongestLeft = 4 * 86'400'000.0;

} // namespace

// Divided by the sum of the weights, or the average would climb from 0 in the first seconds.
double TransferRate::Rate() const noexcept { return weights_ > 0 ? average_ / weights_ : 0; }

void TransferRate::Sample(std::uint64_t now, std::uint64_t done) noexcept {
    const double length = static_cast<double>(now - sampled_);
    const double rate = static_cast<double>(done - sampledDone_) / length;
    const double weight = 1 - std::exp(-length / kMemory);
    average_ += weight * (rate - average_);
    weights_ += weight * (1 - weights_);
    sampled_ = now;
    sampledDone_ = done;
}

void TransferRate::Steer(std::uint64_t now, double millisecondsLeft) noexcept {
    const double measured = static_cast<double>(now) + millisecondsLeft;
    const double tolerance = std::max(kLeastTolerance, kToleratedShare * millisecondsLeft);
    const bool onCourse = end_ && std::abs(measured - *end_) <= tolerance;
    if (onCourse) {
        astray_.reset();
    } else if (end_ && !astray_) {
        astray_ = now;
    }
    if (end_ && (onCourse || now - *astray_ < kLongestAstray)) return;
    end_ = measured;
    astray_.reset();
}

void TransferRate::Note(std::uint64_t now, std::uint64_t done, std::uint64_t total) {
    if (done < sampledDone_) {
        sampled_ = now;
        sampledDone_ = done;
        end_.reset();
    }
    if (now - sampled_ >= kSampleLength) Sample(now, done);
    if (now - start_ < kSilence) return;
    const double rate = Rate();
    if (!shownRate_ || now - shown_ >= kShownFor) {
        shownRate_ = static_cast<std::uint64_t>(std::llround(rate * 1000));
        shown_ = now;
    }
    const double left = static_cast<double>(total - std::min(total, done));
    if (total == 0 || left > rate * kLongestLeft) return end_.reset();
    if (rate > 0) Steer(now, left / rate);
}

void TransferRate::LeaveOutUntil(std::uint64_t now) noexcept {
    const std::uint64_t pause = now - sampled_;
    start_ += pause;
    shown_ += pause;
    sampled_ = now;
    if (end_) *end_ += static_cast<double>(pause);
    astray_.reset();
}

std::optional<std::uint64_t> TransferRate::SecondsLeft(std::uint64_t now) const noexcept {
    if (!end_) return std::nullopt;
    const double left = *end_ - static_cast<double>(now);
    return left <= 1000 ? 1 : static_cast<std::uint64_t>(std::ceil(left / 1000));
}

} // namespace providers
