// Turns the steps of work on pictures into progress records.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "services/transforms/WorkChannel.h"
#include "services/transforms/pictures/PictureControl.h"

namespace transforms {

// Used by all threads of the work on one request. Ends before the request's last reply is sent.
class PictureWatch final : public PictureSteps {
public:
    explicit PictureWatch(WorkChannel& channel) noexcept : channel_(channel) {}

    // Sends a record at most once a second: the manager wants to know that the process is alive.
    void Step() noexcept override;

    // Work on another picture of several begins: sends a record at once, so that the manager knows
    // which picture ended the process if one does.
    void Begin(std::uint32_t number) noexcept;

    // The limits and flags for the codecs; valid as long as this object.
    PictureControl Control() noexcept;
    // Whether the manager no longer reads; the codecs then end with Cancelled.
    bool IsUnread() const noexcept { return isUnread_; }

private:
    void Send() noexcept;

    WorkChannel& channel_;
    std::atomic<std::uint64_t> steps_{0};
    std::atomic<ULONGLONG> sent_{GetTickCount64()}; // when a record was sent last
    std::atomic<bool> isUnread_{false};
    std::mutex sending_;
    std::uint64_t reported_ = 0; // under the lock, as the next one
    std::uint32_t number_ = 0;
};

} // namespace transforms
