// A call that may never return, made on a thread of its own.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/DetachedThread.h"
#include "services/providers/worker/Event.h"

namespace providers {

// Begins a call, which can be waited for as often and as long as its caller likes. One thread owns
// it. The work owns all that it uses: it may outlive this object and the session. Its result is
// destroyed on either thread.
template <class Result>
class DetachedCall {
public:
    // The work gets an event that is set once nobody waits any more. Throws std::bad_alloc. Without
    // a thread the call is over at once, without a result.
    explicit DetachedCall(std::function<Result(HANDLE stop)> work)
        : shared_(std::make_shared<Shared>()) {
        const bool isBegun = RunDetached([shared = shared_, work = std::move(work)] {
            const Finish finish{*shared}; // also when the work throws
            shared->result.emplace(work(shared->stop.Get()));
        });
        if (!isBegun) SetEvent(shared_->done.Get());
    }
    ~DetachedCall() {
        if (shared_) SetEvent(shared_->stop.Get());
    }
    DetachedCall(DetachedCall&&) noexcept = default;
    DetachedCall& operator=(DetachedCall&& other) noexcept {
        std::swap(shared_, other.shared_);
        return *this;
    }

    // An event that is set once the call is over.
    HANDLE Done() const noexcept { return shared_->done.Get(); }
    bool IsDone() const noexcept { return IsSet(Done()); }

    // Nothing before the call is over, and when the work threw.
    std::optional<Result> Take() { return IsDone() ? std::move(shared_->result) : std::nullopt; }

private:
    // The result is written before `done` is set, and read after.
    struct Shared {
        ObLib::UniqueKernelHandle stop = MakeEvent();
        ObLib::UniqueKernelHandle done = MakeEvent();
        std::optional<Result> result;
    };
    struct Finish {
        Shared& shared;
        ~Finish() { SetEvent(shared.done.Get()); }
    };

    std::shared_ptr<Shared> shared_;
};

} // namespace providers
