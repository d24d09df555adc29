#include "services/transforms/PictureWatch.h"

namespace transforms {
namespace {

constexpr ULONGLONG kInterval = 1000; // milliseconds

} // namespace

// How many steps there will be isn't known: a search for a size codes as often as it has to.
void PictureWatch::Step() noexcept {
    ++steps_;
    if (GetTickCount64() - sent_ < kInterval) return;
    const std::lock_guard guard(sending_);
    if (GetTickCount64() - sent_ >= kInterval) Send();
}

void PictureWatch::Begin(std::uint32_t number) noexcept {
    ++steps_;
    const std::lock_guard guard(sending_);
    number_ = number;
    Send();
}

// Under the lock.
void PictureWatch::Send() noexcept {
    const std::uint64_t steps = steps_;
    if (steps <= reported_) return;
    reported_ = steps;
    sent_ = GetTickCount64();
    if (!channel_.SendProgress(steps, steps + 1, number_)) isUnread_ = true;
}

PictureControl PictureWatch::Control() noexcept {
    PictureControl control;
    control.cancelled = &isUnread_;
    control.steps = this;
    return control;
}

} // namespace transforms
