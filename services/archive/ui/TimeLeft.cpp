#include "services/archive/ui/TimeLeft.h"

#include <algorithm>
#include <cmath>

#include "services/archive/ThisModule.h"
#include "services/archive/texts/FormatMessageText.h"
#include "services/archive/ui/ProgressWindowIds.h"

namespace obarchive {
namespace {

constexpr std::uint64_t kSilence = 2000;       // milliseconds, as all below
constexpr std::uint64_t kSampleLength = 500;   // shorter ones measure the disk's cache
constexpr double kMemory = 6000;               // the time constant of the rate's average
constexpr double kLeastTolerance = 3000;       // the end may be off by this much
constexpr double kToleratedShare = 0.2;        // or by this share of what is left
constexpr std::uint64_t kLongestAstray = 1500; // before the end is set anew

} // namespace

void TimeLeft::Sample(std::uint64_t now, std::uint64_t done) {
    const double length = static_cast<double>(now - sampled_);
    const double rate = static_cast<double>(done - std::min(done, sampledDone_)) / length;
    const double weight = rate_ == 0 ? 1 : 1 - std::exp(-length / kMemory);
    rate_ += weight * (rate - rate_);
    sampled_ = now;
    sampledDone_ = done;
}

void TimeLeft::Steer(std::uint64_t now, double millisecondsLeft) {
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

void TimeLeft::Note(std::uint64_t now, std::uint64_t done, std::uint64_t total) {
    if (now - sampled_ >= kSampleLength) Sample(now, done);
    if (now - start_ < kSilence || total == 0 || rate_ <= 0) return;
    Steer(now, static_cast<double>(total - std::min(total, done)) / rate_);
}

std::optional<std::uint64_t> TimeLeft::Seconds(std::uint64_t now) const {
    if (!end_) return std::nullopt;
    const double left = *end_ - static_cast<double>(now);
    return left <= 1000 ? 1 : static_cast<std::uint64_t>(std::ceil(left / 1000));
}

std::wstring TimeLeftText(std::uint64_t seconds) {
    constexpr std::uint64_t kStep = 5;
    constexpr std::uint64_t kMinute = 60;
    constexpr std::uint64_t kHour = 3600;
    const auto rounded = [&](std::uint64_t unit) {
        return std::to_wstring((seconds + unit / 2) / unit);
    };
    if (seconds <= kStep) return OwnText(OB_TEXT_PROGRESS_FEW_SECONDS);
    const std::uint64_t steps = (seconds + kStep - 1) / kStep * kStep;
    if (steps < kMinute)
        return FormatMessageText(OB_TEXT_PROGRESS_SECONDS, {std::to_wstring(steps)});
    if (seconds < kMinute + kMinute / 2) return OwnText(OB_TEXT_PROGRESS_ONE_MINUTE);
    if (seconds < 2 * kHour) return FormatMessageText(OB_TEXT_PROGRESS_MINUTES, {rounded(kMinute)});
    return FormatMessageText(OB_TEXT_PROGRESS_HOURS, {rounded(kHour)});
}

} // namespace obarchive
