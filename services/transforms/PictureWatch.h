// Turns the steps of work on pictures into progress records.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "services/transforms/WorkChannel.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms {

// Used by all threads of the work on one request. Ends before the request's last reply is sent.
class PictureWatch final : public PictureSteps {
public:
    // `reported` is the work that the request's earlier records have reported.
    explicit PictureWatch(WorkChannel& channel, std::uint64_t reported = 0) noexcept
        : channel_(channel), steps_(reported), reported_(reported) {}

    // Sends a record at most once a second: the manager wants to know that the process is alive.
    void Step() noexcept override;

    // Work on another picture of several begins: sends a record at once, so that the manager knows
    // which picture ended the process if one does.
    void Begin(std::uint32_t number) noexcept;

    // The limits and flags for the codecs; valid as long as this object.
    PictureControl Control() noexcept;
    // Whether the manager no longer reads; the codecs then end with Cancelled.
    bool IsUnread() const noexcept { return isUnread_; }
    // The work that is done. No record has reported more.
    std::uint64_t Steps() const noexcept { return steps_; }

private:
    void Send() noexcept;

    WorkChannel& channel_;
    std::atomic<std::uint64_t> steps_;
    std::atomic<ULONGLONG> sent_{GetTickCount64()}; // when a record was sent last
    std::atomic<bool> isUnread_{false};
    std::mutex sending_;
    std::uint64_t reported_; // under the lock, as the next one
    std::uint32_t number_ = 0;
};

} // namespace transforms
