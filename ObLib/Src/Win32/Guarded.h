// Ends exceptions at an edge that none may pass: an export, a method that COM calls, the first
// function of a thread.
#pragma once

namespace ObLib {

// Runs `work` and returns its result. When it throws, runs `onException`, which must not throw, and
// returns the result of that.
template <class Work, class OnException>
auto GuardedElse(Work work, OnException onException) noexcept {
    try {
        return work();
    } catch (...) {
        return onException();
    }
}

// Runs `work` and returns its result, or `onException` when it throws.
template <class Result, class Work>
Result Guarded(Result onException, Work work) noexcept {
    return GuardedElse([&]() -> Result { return work(); }, [&]() -> Result { return onException; });
}

// Runs `work`, which has no result. False when it throws.
template <class Work>
bool RanGuarded(Work work) noexcept {
    return Guarded(false, [&] { return work(), true; });
}

} // namespace ObLib
