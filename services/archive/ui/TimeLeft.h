// How long a run will still take, told so calmly that a person can read it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace obarchive {

// Fed with how far the run is, a few times a second. Times are milliseconds of one clock that
// doesn't run backwards. One thread.
class TimeLeft {
public:
    // `start` is when the run began.
    explicit TimeLeft(std::uint64_t start) : start_(start), sampled_(start) {}

    // `total` 0: not known yet.
    void Note(std::uint64_t now, std::uint64_t done, std::uint64_t total);

    // Whole seconds, at least 1; nothing in the first two seconds and before anything was done.
    // Counts down with the clock, and only leaves that road when the measure has pointed elsewhere
    // for a while, so that a short stall or a fast file doesn't make it jump.
    std::optional<std::uint64_t> Seconds(std::uint64_t now) const;

private:
    void Sample(std::uint64_t now, std::uint64_t done);
    void Steer(std::uint64_t now, double millisecondsLeft);

    std::uint64_t start_;
    std::uint64_t sampled_; // when the rate was last measured
    std::uint64_t sampledDone_ = 0;
    double rate_ = 0;                     // bytes a millisecond, the last seconds weighing most
    std::optional<double> end_;           // when the run is expected to end
    std::optional<std::uint64_t> astray_; // since when the measure points elsewhere
};

// "About 25 seconds left" and the like: in steps, the coarser the longer it takes.
std::wstring TimeLeftText(std::uint64_t seconds);

} // namespace obarchive
