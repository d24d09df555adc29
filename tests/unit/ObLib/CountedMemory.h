// An operator new that counts, fails at the call that a test sets, and inspects released blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

// Of the whole process so far: calls of operator new, and blocks that are not released yet.
std::size_t AllocationCount();
std::size_t LiveBlocks();

// Runs `call` within the next call of operator new; null takes the order back. What `call`
// allocates itself is as usual.
void AtNextAllocation(void (*call)());

// While it lives, released blocks are looked at. One at a time, and no other thread may run.
class WatchReleased {
public:
    // A block contains a text when it has four units `unit` in a row.
    explicit WatchReleased(wchar_t unit);
    ~WatchReleased();
    WatchReleased(const WatchReleased&) = delete;
    WatchReleased& operator=(const WatchReleased&) = delete;

    // The number of blocks released since, and the number of those that contained the units.
    std::size_t Released() const;
    std::size_t Holding() const;
};

// While it lives, the allocation number `which` (from 0) of the process throws std::bad_alloc. One
// at a time, and no other thread may run.
class FailAllocation {
public:
    explicit FailAllocation(std::size_t which);
    ~FailAllocation();
    FailAllocation(const FailAllocation&) = delete;
    FailAllocation& operator=(const FailAllocation&) = delete;
};

// Runs `work` with its first allocation failing, then its second, and so on until it comes through;
// `check` looks at what each failure left. Gives the number of failures.
template <class Work, class Check>
std::size_t FailEachAllocation(Work work, Check check) {
    for (std::size_t which = 0;; ++which) {
        try {
            const FailAllocation failing(which);
            work();
            return which;
        } catch (const std::bad_alloc&) {
        }
        check();
    }
}
