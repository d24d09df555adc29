// A ring of buffers between two threads.
#include "services/transforms/raster/BandPipe.h"

namespace transforms {

BandPipe::BandPipe(std::size_t bandBytes, std::function<void(BandPipe&)> decode) {
    for (auto& band : bands_) band.resize(bandBytes);
    thread_ = std::thread([this, decode = std::move(decode)] { Run(decode); });
}

BandPipe::~BandPipe() {
    {
        const std::lock_guard guard(lock_);
        stopped_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void BandPipe::Run(const std::function<void(BandPipe&)>& decode) {
    std::exception_ptr failure;
    try {
        decode(*this);
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard guard(lock_);
    failure_ = failure;
    ended_ = true;
    changed_.notify_all();
}

std::uint8_t* BandPipe::Empty() {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [this] { return stopped_ || filled_ - taken_ < Count; });
    return stopped_ ? nullptr : bands_[filled_ % Count].data();
}

void BandPipe::Fill() {
    {
        const std::lock_guard guard(lock_);
        ++filled_;
    }
    changed_.notify_all();
}

const std::uint8_t* BandPipe::Full() {
    std::unique_lock guard(lock_);
    if (held_) {
        held_ = false;
        ++taken_;
        changed_.notify_all();
    }
    changed_.wait(guard, [this] { return ended_ || filled_ > taken_; });
    if (filled_ > taken_) {
        held_ = true;
        return bands_[taken_ % Count].data();
    }
    if (failure_) std::rethrow_exception(failure_);
    return nullptr;
}

} // namespace transforms
