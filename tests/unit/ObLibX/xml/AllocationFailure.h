// Memory that runs out at a chosen allocation.
#pragma once

#include <cstddef>
#include <new>

// While one lives, allocation number `failing` (from 0) of the process and, with `andLater`, all
// later ones throw std::bad_alloc. Only one at a time; nothing else may run.
class AllocationFailure {
public:
    explicit AllocationFailure(std::size_t failing, bool andLater = true);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
    bool Happened() const;
};

// Allocations of `work`, which must not fail.
std::size_t CountAllocations(void (*work)(void*), void* context);

// Runs `work` on what `prepare` gives, with the first allocation failing, then the second, and so
// on until it comes through; calls `check` on what a failure left. Gives the number of failures.
template <typename Prepare, typename Work, typename Check>
std::size_t FailEachAllocation(Prepare prepare, Work work, Check check) {
    for (std::size_t failing = 0;; ++failing) {
        auto subject = prepare();
        bool failed = false;
        {
            const AllocationFailure failure(failing);
            try {
                work(*subject);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            if (!failed && !failure.Happened()) return failing;
        }
        check(*subject, failed);
    }
}
