// Estimates how long a run will still take, without jumps.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace obarchive {

// Its caller reports the progress a few times a second. Times are milliseconds of a monotonic
// clock. One thread.
class TimeLeft {
public:
    // `start` is when the run began.
    explicit TimeLeft(std::uint64_t start) : start_(start), sampled_(start) {}

    // `total` 0: not known yet.
    void Note(std::uint64_t now, std::uint64_t done, std::uint64_t total);

    // Whole seconds, at least 1; nothing in the first two seconds and before anything was done.
    // Counts down in real time; estimates again only after the measured rate has differed for 1.5
    // s, so that a short stall or a fast file causes no jump.
    std::optional<std::uint64_t> Seconds(std::uint64_t now) const;

private:
    void Sample(std::uint64_t now, std::uint64_t done);
    void Steer(std::uint64_t now, double millisecondsLeft);

    std::uint64_t start_;
    std::uint64_t sampled_; // when the rate was last measured
    std::uint64_t sampledDone_ = 0;
    double rate_ = 0;                     // bytes a millisecond; the last seconds weigh most
    std::optional<double> end_;           // when the run is expected to end
    std::optional<std::uint64_t> astray_; // since when the measured end has differed
};

// "About 25 seconds left" and the like, in steps that grow with the time.
std::wstring TimeLeftText(std::uint64_t seconds);

} // namespace obarchive
