// Estimates how fast a file is transferred and how long the rest takes, without jumps.
#pragma once

#include <cstdint>
#include <optional>

namespace providers {

// Milliseconds of a monotonic clock, read on the thread of the dialogs alone.
using UploadClock = std::uint64_t (*)();

// Its caller reports the progress a few times a second. Times are milliseconds of a monotonic
// clock, which the caller reads. One thread.
class TransferRate {
public:
    // `start` is when the transfer began.
    explicit TransferRate(std::uint64_t start) noexcept
        : start_(start), sampled_(start), shown_(start) {}

    // `done` goes back when bytes have to be sent again; what is left is then estimated anew.
    // `total` 0: not known yet.
    void Note(std::uint64_t now, std::uint64_t done, std::uint64_t total);

    // Leaves out the time since the last Note, in which the user was asked something.
    void LeaveOutUntil(std::uint64_t now) noexcept;

    // Nothing in the first two seconds. Changes once a second, and weighs the last seconds most.
    std::optional<std::uint64_t> BytesPerSecond() const noexcept { return shownRate_; }

    // Whole seconds, at least 1; nothing in the first two seconds, and while the rest would take
    // longer than four days. Counts down in real time; estimates again only after the measured rate
    // has differed for 1.5 s, so that a short stall causes no jump.
    std::optional<std::uint64_t> SecondsLeft(std::uint64_t now) const noexcept;

private:
    double Rate() const noexcept;
    void Sample(std::uint64_t now, std::uint64_t done) noexcept;
    void Steer(std::uint64_t now, double millisecondsLeft) noexcept;

    std::uint64_t start_;
    std::uint64_t sampled_; // when the rate was last measured
    std::uint64_t sampledDone_ = 0;
    std::uint64_t shown_; // when the shown rate last changed
    double average_ = 0;  // bytes a millisecond, too low until the weights come close to 1
    double weights_ = 0;  // the sum of the weights in the average
    std::optional<std::uint64_t> shownRate_;
    std::optional<double> end_;           // when the transfer is expected to end
    std::optional<std::uint64_t> astray_; // since when the measured end has differed
};

} // namespace providers
